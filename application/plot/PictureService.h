#pragma once

#include <plot/PictureData.h>
#include <plot/PictureSize.h>
#include <plot/ReportSweep.h>

#include <surrogate_plot/Export.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

class CaseSession;

/**
 * The pictures for programs that load this library only when they draw: starting the toolkit's
 * plots and their libraries takes a noticeable part of the time that a short command needs.
 * Whoever links the library can use the classes behind it just as well.
 */
class PictureService
{
public:
    virtual ~PictureService() = default;

    /** What a user typed: kind and size as words, empty for none, and the file.
     *  @throw UsageError as SessionPictures::kindOf(), PictureSize::parse(), Picture::formatOf() */
    virtual void check(const std::string& kind, const std::optional<std::string>& size,
                       const std::string& path) const = 0;

    /** As SessionPictures::sweepWhatIsLeft() and usualValues(). */
    virtual void sweepWhatIsLeft(const std::string& kind, CaseSession& session,
                                 const std::vector<std::size_t>& held) const = 0;
    virtual std::size_t usualValues(const std::string& kind) const = 0;

    /** As SessionPictures::check(). */
    virtual void check(const std::string& kind, const CaseSession& session) const = 0;

    /** As SessionPictures::make(). */
    virtual std::vector<PictureData> make(const std::string& kind, CaseSession& session) const = 0;

    /** As SessionPictures::reportSweeps(). */
    virtual std::vector<std::vector<ReportSweep>> reportSweeps(CaseSession& session) const = 0;

    /** One file of all pictures, as Picture::write(). */
    virtual void write(std::vector<PictureData> pictures, const std::optional<std::string>& size,
                       const std::string& path) const = 0;

    /** The picture as an svg element, as Picture::toInlineSvg(). */
    virtual std::string inlineSvg(const PictureData& picture, const PictureSize& size) const = 0;
};

/** The one service; its name for who loads it is "surrogatePictureService". */
extern "C" SURROGATE_PLOT_EXPORT const PictureService* surrogatePictureService();
