#include "tools/movencoder/damage.h"

#include <algorithm>
#include <cmath>

namespace tavrix::movencoder
{

namespace
{

// With one decimal.
std::string decimal(double seconds)
{
    const long long tenths = std::llround(std::max(0.0, seconds) * 10);
    return std::to_string(tenths / 10) + '.' + std::to_string(tenths % 10);
}

// "0:04.2", "1:02:03.0"
std::string clockText(double seconds)
{
    const long long tenths = std::llround(std::max(0.0, seconds) * 10);
    const long long whole = tenths / 10;
    const auto twoDigits = [](long long number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    std::string text = std::to_string(whole / 60 % 60);
    if (whole >= 3600) {
        text = std::to_string(whole / 3600) + ':' + twoDigits(whole / 60 % 60);
    }
    return text + ':' + twoDigits(whole % 60) + '.' + std::to_string(tenths % 10);
}

} // namespace

std::string damageText(const Damage& damage)
{
    std::string text;
    if (damage.endsEarly) {
        text = "Incomplete: ";
        text += damage.declaredSeconds > 0
                    ? decimal(damage.readSeconds) + " of " + decimal(damage.declaredSeconds) + " s could be read"
                    : "only " + decimal(damage.readSeconds) + " s could be read";
    }
    if (damage.pictures > 0) {
        text += text.empty() ? "" : "; ";
        text += "Source damaged: " + std::to_string(damage.pictures) +
                (damage.pictures == 1 ? " picture at " : " pictures from ") + clockText(damage.firstAt) +
                (damage.pictures == 1 ? "" : " on");
    }
    return text;
}

} // namespace tavrix::movencoder
