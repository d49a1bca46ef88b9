#include "app/table_clipboard.hpp"

#include <algorithm>
#include <map>
#include <tuple>

namespace cauce::app {

namespace {

using forms::Control;
using forms::Kind;

constexpr int kMinRows = 5;
constexpr int kMaxGap = 8;         // layout units between the columns of one table
constexpr int kHeadingReach = 40;  // a heading ends at most this far above the first row

struct Column {
    int x = 0, w = 0;
    std::vector<int> ys;
    std::vector<std::string> names;
};

// Columns: boxes of the same x and width, split into runs of at least kMinRows even steps.
std::vector<Column> FindColumns(const forms::Screen& screen) {
    std::map<std::pair<int, int>, std::vector<const Control*>> by_x;
    for (const auto& c : screen.Controls())
        if (c.kind == Kind::TextBox) by_x[{c.place.x, c.place.w}].push_back(&c);
    std::vector<Column> columns;
    for (auto& [xw, boxes] : by_x) {
        std::sort(boxes.begin(), boxes.end(),
                  [](const Control* a, const Control* b) { return a->place.y < b->place.y; });
        std::size_t start = 0;
        while (start < boxes.size()) {
            std::size_t end = start + 1;
            if (end < boxes.size()) {
                const int step = boxes[end]->place.y - boxes[start]->place.y;
                while (step > 0 && end < boxes.size() &&
                       boxes[end]->place.y - boxes[end - 1]->place.y == step)
                    ++end;
            }
            if (end - start >= kMinRows) {
                Column col{xw.first, xw.second, {}, {}};
                for (std::size_t k = start; k < end; ++k) {
                    col.ys.push_back(boxes[k]->place.y);
                    col.names.push_back(boxes[k]->name);
                }
                columns.push_back(std::move(col));
                start = end;
            } else {
                ++start;
            }
        }
    }
    std::sort(columns.begin(), columns.end(), [](const Column& a, const Column& b) {
        return std::tie(a.ys.front(), a.x) < std::tie(b.ys.front(), b.x);
    });
    return columns;
}

std::string Trim(std::string_view s) {
    std::size_t a = 0, b = s.size();
    while (a < b && (s[a] == ' ' || s[a] == '\t')) ++a;
    while (b > a && (s[b - 1] == ' ' || s[b - 1] == '\t')) --b;
    return std::string(s.substr(a, b - a));
}

// The label standing closest above the column's first box.
std::string Heading(const forms::Screen& screen, const Column& col) {
    const int top = col.ys.front();
    const Control* best = nullptr;
    for (const auto& c : screen.Controls()) {
        if (c.kind != Kind::Label) continue;
        const int centre = c.place.x + c.place.w / 2;
        const int bottom = c.place.y + c.place.h;
        if (centre >= col.x && centre < col.x + col.w && bottom <= top && bottom >= top - kHeadingReach &&
            (!best || bottom > best->place.y + best->place.h))
            best = &c;
    }
    return best ? Trim(best->text) : "";
}

std::vector<std::vector<std::string>> SplitCells(std::string_view text) {
    std::vector<std::vector<std::string>> rows;
    std::size_t pos = 0;
    while (pos < text.size()) {
        std::size_t nl = text.find('\n', pos);
        if (nl == std::string_view::npos) nl = text.size();
        std::string_view line = text.substr(pos, nl - pos);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        std::vector<std::string> cells;
        std::size_t c = 0;
        while (true) {
            const std::size_t tab = line.find('\t', c);
            cells.emplace_back(
                line.substr(c, tab == std::string_view::npos ? std::string_view::npos : tab - c));
            if (tab == std::string_view::npos) break;
            c = tab + 1;
        }
        rows.push_back(std::move(cells));
        pos = nl + 1;
    }
    return rows;
}

}  // namespace

std::pair<int, int> BoxTable::Locate(std::string_view box) const {
    for (int r = 0; r < Rows(); ++r)
        for (int c = 0; c < Columns(); ++c)
            if (cells[r][c] == box) return {r, c};
    return {-1, -1};
}

std::vector<BoxTable> FindTables(const forms::Screen& screen) {
    const std::vector<Column> columns = FindColumns(screen);
    std::vector<BoxTable> tables;
    std::size_t k = 0;
    while (k < columns.size()) {
        std::size_t end = k + 1;
        while (end < columns.size() && columns[end].ys == columns[k].ys &&
               columns[end].x - (columns[end - 1].x + columns[end - 1].w) <= kMaxGap &&
               columns[end].x >= columns[end - 1].x + columns[end - 1].w)
            ++end;
        BoxTable t;
        t.cells.resize(columns[k].ys.size());
        for (std::size_t c = k; c < end; ++c) {
            t.headings.push_back(Heading(screen, columns[c]));
            for (std::size_t r = 0; r < columns[c].names.size(); ++r)
                t.cells[r].push_back(columns[c].names[r]);
        }
        // A column of form fields with their captions beside them is no table: a table has headings.
        if (std::none_of(t.headings.begin(), t.headings.end(),
                         [](const std::string& h) { return h.empty(); }))
            tables.push_back(std::move(t));
        k = end;
    }
    return tables;
}

std::string CopyTable(const forms::Screen& screen, const BoxTable& table) {
    std::string out;
    auto line = [&out](const std::vector<std::string>& cells) {
        for (std::size_t c = 0; c < cells.size(); ++c) {
            if (c) out += '\t';
            out += cells[c];
        }
        out += '\n';
    };
    line(table.headings);
    for (const auto& row : table.cells) {
        std::vector<std::string> texts;
        for (const auto& name : row) {
            std::string t = screen.Get(name).text;
            std::replace(t.begin(), t.end(), '\t', ' ');  // a tab inside a box must not split the cell
            std::replace(t.begin(), t.end(), '\n', ' ');
            texts.push_back(std::move(t));
        }
        line(texts);
    }
    return out;
}

int PasteTable(forms::Screen& screen, const BoxTable& table, int row, int column, std::string_view text) {
    auto rows = SplitCells(text);
    // A spreadsheet ends its copy with a line break: no empty last row.
    if (!rows.empty() && rows.back().size() == 1 && rows.back().front().empty()) rows.pop_back();
    if (!rows.empty()) {
        std::vector<std::string> first;
        for (const auto& cell : rows.front()) first.push_back(Trim(cell));
        std::vector<std::string> heads(
            table.headings.begin() + std::min<std::size_t>(column, table.headings.size()),
            table.headings.end());
        if (first.size() <= heads.size() && std::equal(first.begin(), first.end(), heads.begin()) &&
            std::any_of(first.begin(), first.end(), [](const std::string& s) { return !s.empty(); }))
            rows.erase(rows.begin());
    }
    int written = 0;
    for (std::size_t r = 0; r < rows.size(); ++r) {
        const int tr = row + static_cast<int>(r);
        if (tr < 0 || tr >= table.Rows()) break;
        for (std::size_t c = 0; c < rows[r].size(); ++c) {
            const int tc = column + static_cast<int>(c);
            if (tc < 0 || tc >= table.Columns()) break;
            screen.Type(table.cells[tr][tc], rows[r][c]);
            ++written;
        }
    }
    return written;
}

}  // namespace cauce::app
