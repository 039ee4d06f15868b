#include "adapters/linux/displays/profiles/VideoCardGamma.h"

#include "base/Release.h"

#include <lcms2.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <system_error>

namespace ambertide {

namespace {

/// False when a level is not a finite number.
bool readCurve(const cmsToneCurve *curve, GammaTables::Table &table)
{
    for (std::size_t i = 0; i < table.size(); ++i) {
        const float level = cmsEvalToneCurveFloat(curve, static_cast<float>(i) / (GammaTables::size - 1));
        if (!std::isfinite(level))
            return false;
        table[i] = std::clamp(level, 0.0F, 1.0F);
    }
    return true;
}

} // namespace

VideoCardGamma readVideoCardGamma(const std::filesystem::path &profile)
{
    const VideoCardGamma damaged{std::nullopt, true};
    std::error_code error;
    if (!std::filesystem::is_regular_file(profile, error))
        return damaged;
    const std::unique_ptr<void, Release<cmsCloseProfile>> opened(cmsOpenProfileFromFile(profile.c_str(), "r"));
    if (!opened)
        return damaged;
    if (cmsIsTag(opened.get(), cmsSigVcgtTag) == 0)
        return {std::nullopt, false};
    const auto *const curves = static_cast<cmsToneCurve **>(cmsReadTag(opened.get(), cmsSigVcgtTag));
    GammaTables tables;
    if (!curves || !readCurve(curves[0], tables.red) || !readCurve(curves[1], tables.green) ||
        !readCurve(curves[2], tables.blue))
        return damaged;
    return {tables, false};
}

} // namespace ambertide
