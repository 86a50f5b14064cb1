#include "plot/PictureService.h"

#include "plot/DrawingApplication.h"
#include "plot/Picture.h"
#include "plot/SessionPictures.h"

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

    void check(const std::string& kind, const CaseSession& session) const override
    {
        SessionPictures::check(SessionPictures::kindOf(kind), session);
    }

    std::vector<PictureData> make(const std::string& kind, CaseSession& session) const override
    {
        return SessionPictures::make(SessionPictures::kindOf(kind), session);
    }

    void write(std::vector<PictureData> pictures, const std::optional<std::string>& size,
               const std::string& path) const override
    {
        const DrawingApplication application;
        Picture(std::move(pictures), sizeOf(size)).write(path);
    }

    std::string inlineSvg(const PictureData& picture, const PictureSize& size) const override
    {
        const DrawingApplication application;
        return Picture({picture}, size).toInlineSvg();
    }
};
} // namespace

const PictureService* surrogatePictureService()
{
    static const Service service;
    return &service;
}
