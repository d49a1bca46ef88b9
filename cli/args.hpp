// What the sub-commands share in reading their options and writing their output: numbers as typed
// on the command line, the output formats, CSV fields and the exit statuses.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace cauce::cli {

// Exit statuses: done; the data or the computation stopped it (a message says why); the command line
// itself was wrong.
inline constexpr int kExitOk = 0;
inline constexpr int kExitData = 1;
inline constexpr int kExitUsage = 2;

// A mistake on the command line, with its Spanish message; the command ends with kExitUsage.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A number as typed on the command line: "1.5", "-2", "3e-4", blanks around it allowed. The decimal
// separator is the point; anything else, or a value that is not finite, is no number.
std::optional<double> ParseNumber(std::string_view text);

enum class Sign { Any, NonNegative, Positive };

// The value of a numeric option; a UsageError naming the option when the text is not a number or
// breaks the sign rule ("--base: ...").
double NumberOption(std::string_view option, const std::string& text, Sign sign);

// A computed value as a person would type it: fixed notation, at most nine decimals, no trailing
// zeros (0.1 + 0.2 gives "0.3").
std::string NumberText(double value);

enum class Format { Text, Csv, Json };

// "texto", "csv" or "json" (json only where allowed); a UsageError otherwise.
Format ParseFormat(const std::string& text, bool json_allowed);

// A CSV field: quoted when it holds a comma, a quote or a line break.
std::string CsvField(std::string_view text);

// Whether standard error is a terminal (progress is shown only there).
bool ErrorIsTerminal();

}  // namespace cauce::cli
