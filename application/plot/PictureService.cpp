#include "plot/PictureService.h"

#include "plot/DrawingApplication.h"
#include "plot/Picture.h"
#include "plot/SessionPictures.h"

#include <memory>
#include <utility>

namespace {
PictureSize sizeOf(const std::optional<std::string>& text)
{
    return text ? PictureSize::parse(*text) : PictureSize();
}

class Service : public PictureService
{
public:
    void check(const std::string& kind, const std::optional<std::string>& size,
               const std::string& path) const override
    {
        SessionPictures::kindOf(kind);
        Picture::formatOf(path);
        sizeOf(size);
    }

    void sweepWhatIsLeft(const std::string& kind, CaseSession& session,
                         const std::vector<std::size_t>& held) const override
    {
        SessionPictures::sweepWhatIsLeft(SessionPictures::kindOf(kind), session, held);
    }

    std::size_t usualValues(const std::string& kind) const override
    {
        return SessionPictures::usualValues(SessionPictures::kindOf(kind));
    }

    void check(const std::string& kind, const CaseSession& session) const override
    {
        SessionPictures::check(SessionPictures::kindOf(kind), session);
    }

    std::vector<PictureData> make(const std::string& kind, CaseSession& session) const override
    {
        return SessionPictures::make(SessionPictures::kindOf(kind), session);
    }

    std::vector<std::vector<ReportSweep>> reportSweeps(CaseSession& session) const override
    {
        return SessionPictures::reportSweeps(session);
    }

    void write(std::vector<PictureData> pictures, const std::optional<std::string>& size,
               const std::string& path) const override
    {
        start();
        Picture(std::move(pictures), sizeOf(size)).write(path);
    }

    std::string inlineSvg(const PictureData& picture, const PictureSize& size) const override
    {
        start();
        return Picture({picture}, size).toInlineSvg();
    }

private:
    void start() const
    {
        if (application == nullptr) {
            application = std::make_unique<DrawingApplication>();
        }
    }

    mutable std::unique_ptr<DrawingApplication> application;
};
} // namespace

const PictureService* surrogatePictureService()
{
    // One application for all pictures of the process, and never destroyed: the toolkit keeps
    // things that outlive it, and is not made for a second one.
    static const Service* const service = new Service;
    return service;
}
