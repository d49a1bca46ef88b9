// The workbook stream of a legacy .xls, rewritten into the plain form freexl follows.
//
// freexl stops, and reports success without a workbook, at records it cannot follow: a chart
// embedded in a sheet (a substream inside the sheet's), a shared-string table in records longer than
// its 8,192-byte buffer (LibreOffice writes them up to the format's 8,224 bytes, as soon as the texts
// pass about 8,000 characters), and it reads formula cells as empty. The rewrite keeps every cell
// record as it is and changes only those: charts, drawings and comments are left out, the string
// table is written again in records that fit, and a formula becomes a cell holding its cached result.
// freexl also loses its place in the string table at a text split between two records, so no text
// is split: one too long for a record is replaced by a stand-in, and the reader puts the text back.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cauce::workbook {

struct SimplifiedXls {
    std::string bytes;                 // a compound file holding only the rewritten workbook stream
    std::vector<std::string> omitted;  // sheets left out ("la hoja de gráfico \"Gráfico1\"")
    std::map<std::string, std::string> long_texts;  // stand-in -> the text, in UTF-8
};

// The simplified file, or nullopt when the bytes are not a compound file with a BIFF8 workbook
// stream that this code can follow (freexl then reads the file as it is, and says what is wrong).
std::optional<SimplifiedXls> SimplifyXls(const std::string& file);

}  // namespace cauce::workbook
