// Text boxes that the legacy number reading takes only in part: "2,5" reads 2, "1.5.2" reads 1.5.
// The value used stays the legacy one; the view only marks the box so the user sees what was read.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cauce::app {

struct PartialReading {
    std::string read;    // the part that counts, as typed ("2")
    std::string unread;  // what follows it ("  ,5" gives ",5")
};

// The reading when a number was read and something other than blanks follows it; nothing when the
// whole text is a number, when it is blank, or when nothing numeric was read at all ("M1", "Sin límite").
std::optional<PartialReading> ReadsInPart(std::string_view text);

// The tooltip of a marked box: what is read and that the decimal separator is the point.
std::string PartialTooltip(std::string_view text);

}  // namespace cauce::app
