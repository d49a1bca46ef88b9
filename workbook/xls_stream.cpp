#include "workbook/xls_stream.hpp"

#include <cstdint>
#include <cstring>
#include <map>
#include <string_view>

namespace cauce::workbook {

namespace {

constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr std::uint32_t kFree = 0xFFFFFFFF;
constexpr std::uint32_t kFatSector = 0xFFFFFFFD;
// The largest record freexl takes whole; a longer one ends its reading as if the stream ended.
constexpr std::size_t kRecordLimit = 8192;

std::uint16_t U16(std::string_view s, std::size_t p) {
    return static_cast<std::uint16_t>(static_cast<unsigned char>(s[p]) | static_cast<unsigned char>(s[p + 1])
                                                                             << 8);
}
std::uint32_t U32(std::string_view s, std::size_t p) {
    return U16(s, p) | static_cast<std::uint32_t>(U16(s, p + 2)) << 16;
}
void Put16(std::string& s, std::uint16_t v) {
    s.push_back(static_cast<char>(v & 0xFF));
    s.push_back(static_cast<char>(v >> 8));
}
void Put32(std::string& s, std::uint32_t v) {
    Put16(s, static_cast<std::uint16_t>(v & 0xFFFF));
    Put16(s, static_cast<std::uint16_t>(v >> 16));
}
void Set32(std::string& s, std::size_t p, std::uint32_t v) {
    for (int i = 0; i < 4; ++i) s[p + static_cast<std::size_t>(i)] = static_cast<char>((v >> (8 * i)) & 0xFF);
}

// ---- Reading the compound file (the container of the old Office formats)

class Compound {
  public:
    explicit Compound(std::string_view f) : f_(f) {}

    // The named stream's bytes; nullopt when the file cannot be followed.
    std::optional<std::string> Stream(std::initializer_list<std::u16string_view> names) {
        if (f_.size() < 512 || f_.compare(0, 8, "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1") != 0) return std::nullopt;
        const unsigned shift = U16(f_, 0x1E), mini_shift = U16(f_, 0x20);
        if ((shift != 9 && shift != 12) || mini_shift != 6) return std::nullopt;
        ss_ = std::size_t{1} << shift;
        const std::uint32_t fat_count = U32(f_, 0x2C), dir_start = U32(f_, 0x30), cutoff = U32(f_, 0x38);
        const std::uint32_t minifat_start = U32(f_, 0x3C);
        std::uint32_t difat_next = U32(f_, 0x44);
        // The FAT's own sectors: 109 in the header, the rest in a chain of DIFAT sectors.
        std::vector<std::uint32_t> fat_sectors;
        for (std::size_t i = 0; i < 109 && fat_sectors.size() < fat_count; ++i)
            fat_sectors.push_back(U32(f_, 0x4C + 4 * i));
        for (std::size_t guard = 0; fat_sectors.size() < fat_count && difat_next < kFatSector; ++guard) {
            const auto sec = Sector(difat_next);
            if (!sec || guard > Sectors()) return std::nullopt;
            for (std::size_t i = 0; i + 1 < ss_ / 4 && fat_sectors.size() < fat_count; ++i)
                fat_sectors.push_back(U32(*sec, 4 * i));
            difat_next = U32(*sec, ss_ - 4);
        }
        for (const std::uint32_t s : fat_sectors) {
            const auto sec = Sector(s);
            if (!sec) return std::nullopt;
            for (std::size_t i = 0; i < ss_ / 4; ++i) fat_.push_back(U32(*sec, 4 * i));
        }
        const auto dir = Chain(
            dir_start, fat_, [this](std::uint32_t s) { return Sector(s); }, ss_);
        if (!dir) return std::nullopt;
        std::optional<std::string> ministream;
        for (std::size_t e = 0; e + 128 <= dir->size(); e += 128) {
            const std::string_view entry(dir->data() + e, 128);
            const std::size_t name_bytes = U16(entry, 64);
            if (name_bytes < 2 || name_bytes > 64) continue;
            std::u16string name;
            for (std::size_t i = 0; i + 2 < name_bytes; i += 2)
                name.push_back(static_cast<char16_t>(U16(entry, i)));
            const unsigned type = static_cast<unsigned char>(entry[66]);
            const std::uint32_t start = U32(entry, 116), size = U32(entry, 120);
            if (type == 5) {
                ministream = Chain(
                    start, fat_, [this](std::uint32_t s) { return Sector(s); }, ss_);
                continue;
            }
            bool wanted = false;
            for (const auto n : names) wanted = wanted || (type == 2 && name == n);
            if (!wanted) continue;
            std::optional<std::string> bytes;
            if (size < cutoff) {
                const auto minifat_bytes = Chain(
                    minifat_start, fat_, [this](std::uint32_t s) { return Sector(s); }, ss_);
                if (!ministream || !minifat_bytes) return std::nullopt;
                std::vector<std::uint32_t> minifat;
                for (std::size_t i = 0; i + 4 <= minifat_bytes->size(); i += 4)
                    minifat.push_back(U32(*minifat_bytes, i));
                const std::string& ms = *ministream;
                bytes = Chain(
                    start, minifat,
                    [&ms](std::uint32_t s) -> std::optional<std::string_view> {
                        if ((static_cast<std::size_t>(s) + 1) * 64 > ms.size()) return std::nullopt;
                        return std::string_view(ms).substr(static_cast<std::size_t>(s) * 64, 64);
                    },
                    64);
            } else {
                bytes = Chain(
                    start, fat_, [this](std::uint32_t s) { return Sector(s); }, ss_);
            }
            if (!bytes || bytes->size() < size) return std::nullopt;
            bytes->resize(size);
            return bytes;
        }
        return std::nullopt;
    }

  private:
    std::size_t Sectors() const { return f_.size() / ss_; }
    std::optional<std::string_view> Sector(std::uint32_t s) const {
        const std::size_t at = (static_cast<std::size_t>(s) + 1) * ss_;
        if (s >= kFatSector || at + ss_ > f_.size()) return std::nullopt;
        return f_.substr(at, ss_);
    }
    template <typename SectorOf>
    static std::optional<std::string> Chain(std::uint32_t s, const std::vector<std::uint32_t>& table,
                                            SectorOf sector, std::size_t size) {
        std::string out;
        for (std::size_t n = 0; s != kEndOfChain; ++n) {
            if (n > table.size() || s >= table.size()) return std::nullopt;  // a loop, or off the table
            const auto sec = sector(s);
            if (!sec || sec->size() != size) return std::nullopt;
            out.append(*sec);
            s = table[s];
        }
        return out;
    }
    std::string_view f_;
    std::size_t ss_ = 512;
    std::vector<std::uint32_t> fat_;
};

// ---- Writing one: a header, its FAT, one directory sector, the stream.

std::optional<std::string> CompoundWith(std::string stream) {
    // Zeros after the last record read as the end of the stream; more than 4,096 bytes keep the stream
    // out of the mini-stream.
    const std::size_t length = std::max<std::size_t>(stream.size() + 4, 4608);
    stream.resize((length + 511) / 512 * 512, '\0');
    const std::size_t data = stream.size() / 512;
    std::size_t fats = 1;
    while (fats * 128 < data + 1 + fats) ++fats;
    if (fats > 109) return std::nullopt;
    std::string out(512, '\0');
    std::memcpy(out.data(), "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8);
    out[0x18] = 0x3E;
    out[0x1A] = 3;
    out[0x1C] = static_cast<char>(0xFE);
    out[0x1D] = static_cast<char>(0xFF);
    out[0x1E] = 9;
    out[0x20] = 6;
    Set32(out, 0x2C, static_cast<std::uint32_t>(fats));
    Set32(out, 0x30, static_cast<std::uint32_t>(fats));  // the directory follows the FAT
    Set32(out, 0x38, 4096);
    Set32(out, 0x3C, kEndOfChain);
    Set32(out, 0x44, kEndOfChain);
    for (std::size_t i = 0; i < 109; ++i)
        Set32(out, 0x4C + 4 * i, i < fats ? static_cast<std::uint32_t>(i) : kFree);
    std::string fat;
    for (std::size_t i = 0; i < fats; ++i) Put32(fat, kFatSector);
    Put32(fat, kEndOfChain);  // the directory
    const std::size_t first = fats + 1;
    for (std::size_t i = 0; i < data; ++i)
        Put32(fat, i + 1 < data ? static_cast<std::uint32_t>(first + i + 1) : kEndOfChain);
    fat.resize(fats * 512, static_cast<char>(0xFF));
    out += fat;
    std::string dir(512, '\0');
    auto entry = [&dir](std::size_t e, std::u16string_view name, char type, std::uint32_t child,
                        std::uint32_t start, std::uint32_t size) {
        const std::size_t at = e * 128;
        for (std::size_t i = 0; i < name.size(); ++i) {
            dir[at + 2 * i] = static_cast<char>(name[i] & 0xFF);
            dir[at + 2 * i + 1] = static_cast<char>(name[i] >> 8);
        }
        dir[at + 64] = static_cast<char>((name.size() + 1) * 2);
        dir[at + 66] = type;
        dir[at + 67] = 1;  // black
        Set32(dir, at + 68, kFree);
        Set32(dir, at + 72, kFree);
        Set32(dir, at + 76, child);
        Set32(dir, at + 116, start);
        Set32(dir, at + 120, size);
    };
    entry(0, u"Root Entry", 5, 1, kEndOfChain, 0);
    entry(1, u"Workbook", 2, kFree, static_cast<std::uint32_t>(first),
          static_cast<std::uint32_t>(stream.size()));
    for (std::size_t e = 2; e < 4; ++e) {
        Set32(dir, e * 128 + 68, kFree);
        Set32(dir, e * 128 + 72, kFree);
        Set32(dir, e * 128 + 76, kFree);
    }
    out += dir;
    out += stream;
    return out;
}

// ---- The shared-string table, read across its continuation records and written again

class Segments {
  public:
    explicit Segments(const std::vector<std::string>& segs) : segs_(segs) {}
    bool AtEnd() {
        while (seg_ < segs_.size() && pos_ >= segs_[seg_].size()) Next();
        return seg_ >= segs_.size();
    }
    bool Byte(unsigned char& b) {
        if (AtEnd()) return false;
        b = static_cast<unsigned char>(segs_[seg_][pos_++]);
        return true;
    }
    bool Skip(std::size_t n) {
        for (unsigned char b; n > 0; --n)
            if (!Byte(b)) return false;
        return true;
    }
    bool Word(std::uint16_t& v) {
        unsigned char a, b;
        if (!Byte(a) || !Byte(b)) return false;
        v = static_cast<std::uint16_t>(a | b << 8);
        return true;
    }
    bool Dword(std::uint32_t& v) {
        std::uint16_t a, b;
        if (!Word(a) || !Word(b)) return false;
        v = a | static_cast<std::uint32_t>(b) << 16;
        return true;
    }
    // cch characters; a continuation record in the middle starts with its own option byte.
    bool Chars(std::size_t cch, bool wide, std::u16string& out) {
        while (out.size() < cch) {
            if (seg_ < segs_.size() && pos_ >= segs_[seg_].size()) {
                Next();
                unsigned char flags;
                if (!Byte(flags)) return false;
                wide = (flags & 1) != 0;
            }
            if (seg_ >= segs_.size()) return false;
            if (wide) {
                std::uint16_t c;
                if (segs_[seg_].size() - pos_ < 2 || !Word(c)) return false;
                out.push_back(static_cast<char16_t>(c));
            } else {
                unsigned char c;
                if (!Byte(c)) return false;
                out.push_back(static_cast<char16_t>(c));
            }
        }
        return true;
    }

  private:
    void Next() {
        ++seg_;
        pos_ = 0;
    }
    const std::vector<std::string>& segs_;
    std::size_t seg_ = 0, pos_ = 0;
};

std::optional<std::vector<std::u16string>> ReadStrings(const std::vector<std::string>& segs) {
    Segments in(segs);
    std::uint32_t total, unique;
    if (!in.Dword(total) || !in.Dword(unique)) return std::nullopt;
    std::vector<std::u16string> strings;
    for (std::uint32_t i = 0; i < unique; ++i) {
        std::uint16_t cch, runs = 0;
        std::uint32_t ext = 0;
        unsigned char flags;
        if (!in.Word(cch) || !in.Byte(flags)) return std::nullopt;
        if ((flags & 0x08) && !in.Word(runs)) return std::nullopt;
        if ((flags & 0x04) && !in.Dword(ext)) return std::nullopt;
        std::u16string s;
        if (!in.Chars(cch, (flags & 1) != 0, s) || !in.Skip(4u * runs) || !in.Skip(ext)) return std::nullopt;
        strings.push_back(std::move(s));
    }
    return strings;
}

std::string Utf8(std::u16string_view s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        std::uint32_t c = s[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < s.size() && s[i + 1] >= 0xDC00 && s[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (s[++i] - 0xDC00);
        if (c < 0x80) {
            out.push_back(static_cast<char>(c));
        } else if (c < 0x800) {
            out.push_back(static_cast<char>(0xC0 | c >> 6));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else if (c < 0x10000) {
            out.push_back(static_cast<char>(0xE0 | c >> 12));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else {
            out.push_back(static_cast<char>(0xF0 | c >> 18));
            out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return out;
}

// The table as records (SST, then CONTINUE), each within kRecordLimit, no text split between two;
// texts of Latin-1 in one byte a character, others in UTF-16. A text too long for any record is
// replaced by a stand-in that no real text holds (it starts with a control character).
std::vector<std::pair<std::uint16_t, std::string>> WriteStrings(
    const std::vector<std::u16string>& strings, std::uint32_t total,
    std::map<std::string, std::string>& long_texts) {
    std::vector<std::pair<std::uint16_t, std::string>> recs{{0x00FC, {}}};
    Put32(recs.back().second, total);
    Put32(recs.back().second, static_cast<std::uint32_t>(strings.size()));
    for (std::size_t k = 0; k < strings.size(); ++k) {
        std::u16string s = strings[k];
        bool narrow = true;
        for (const char16_t c : s) narrow = narrow && c < 0x100;
        if (3 + s.size() * (narrow ? 1 : 2) > kRecordLimit) {
            const std::string stand_in =
                "\x01"
                "cauce-texto-" +
                std::to_string(k);
            long_texts[stand_in] = Utf8(s);
            s.assign(stand_in.begin(), stand_in.end());
            narrow = true;
        }
        const std::size_t size = 3 + s.size() * (narrow ? 1 : 2);
        if (recs.back().second.size() + size > kRecordLimit) recs.push_back({0x003C, {}});
        std::string& b = recs.back().second;
        Put16(b, static_cast<std::uint16_t>(s.size()));
        b.push_back(narrow ? 0 : 1);
        for (const char16_t c : s) {
            if (narrow) {
                b.push_back(static_cast<char>(c));
            } else {
                Put16(b, static_cast<std::uint16_t>(c));
            }
        }
    }
    return recs;
}

std::string Record(std::uint16_t type, std::string_view body) {
    std::string r;
    Put16(r, type);
    Put16(r, static_cast<std::uint16_t>(body.size()));
    r.append(body);
    return r;
}

std::string SheetName(std::string_view boundsheet) {
    // BIFF8: the name's length in characters, its option byte, then the characters.
    if (boundsheet.size() < 8) return "";
    const std::size_t cch = static_cast<unsigned char>(boundsheet[6]);
    const bool wide = boundsheet[7] & 1;
    std::string name;
    for (std::size_t i = 0; i < cch; ++i) {
        const std::size_t at = 8 + i * (wide ? 2 : 1);
        if (at + (wide ? 2 : 1) > boundsheet.size()) break;
        const unsigned c = wide ? U16(boundsheet, at) : static_cast<unsigned char>(boundsheet[at]);
        // UTF-8 of the basic plane, enough for a name in a message.
        if (c < 0x80) {
            name.push_back(static_cast<char>(c));
        } else if (c < 0x800) {
            name.push_back(static_cast<char>(0xC0 | c >> 6));
            name.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        } else {
            name.push_back(static_cast<char>(0xE0 | c >> 12));
            name.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
            name.push_back(static_cast<char>(0x80 | (c & 0x3F)));
        }
    }
    return name;
}

struct Rec {
    std::uint16_t type;
    std::string_view body;
    std::size_t offset;  // in the original stream
};

}  // namespace

std::optional<SimplifiedXls> SimplifyXls(const std::string& file) {
    const auto stream = Compound(file).Stream({u"Workbook", u"Book"});
    if (!stream) return std::nullopt;
    const std::string_view s(*stream);
    std::vector<Rec> recs;
    for (std::size_t p = 0; p + 4 <= s.size();) {
        const std::uint16_t type = U16(s, p), len = U16(s, p + 2);
        if (p + 4 + len > s.size() || (type == 0 && len == 0)) break;
        recs.push_back({type, s.substr(p + 4, len), p});
        p += 4 + len;
    }
    // The globals must be BIFF8 (BOF version 0x0600) for the string table and formulas read here.
    if (recs.empty() || recs[0].type != 0x0809 || recs[0].body.size() < 4 || U16(recs[0].body, 0) != 0x0600)
        return std::nullopt;
    for (const Rec& r : recs)
        if (r.type == 0x002F) return std::nullopt;  // FILEPASS: the records that follow are encrypted

    // The top-level substreams by their offset, and the kind each is (0x10 a worksheet).
    std::map<std::size_t, std::uint16_t> kind_at;
    for (std::size_t i = 0, depth = 0; i < recs.size(); ++i) {
        if (recs[i].type == 0x0809) {
            if (depth == 0 && recs[i].body.size() >= 4) kind_at[recs[i].offset] = U16(recs[i].body, 2);
            ++depth;
        } else if (recs[i].type == 0x000A && depth > 0) {
            --depth;
        }
    }

    SimplifiedXls out;
    std::string body;
    std::vector<std::size_t> boundsheet_fields;     // where each kept sheet's offset is written
    std::vector<std::size_t> sheet_offsets;         // the original offsets of the kept sheets
    std::map<std::size_t, std::size_t> new_offset;  // original offset of a kept sheet -> new
    std::size_t depth = 0, skip_until = 0;          // skipping a substream while depth > skip_until
    bool skipping = false, dropped_last = false;
    const Rec* formula = nullptr;  // a formula whose text result comes next
    for (std::size_t i = 0; i < recs.size(); ++i) {
        const Rec& r = recs[i];
        if (r.type == 0x0809) {
            ++depth;
            const bool top = depth == 1;
            const bool worksheet = r.body.size() >= 4 && U16(r.body, 2) == 0x10;
            const bool globals = i == 0;
            if (!skipping && !globals && (!top || !worksheet)) {
                skipping = true;
                skip_until = depth - 1;
            }
            if (!skipping && top) new_offset[r.offset] = body.size();
        }
        if (skipping) {
            if (r.type == 0x000A && --depth == skip_until) skipping = false;
            continue;
        }
        if (r.type == 0x000A && depth > 0) --depth;

        const bool continuation = r.type == 0x003C;
        switch (r.type) {
            case 0x0085: {  // BOUNDSHEET: only worksheets stay
                const std::size_t at = r.body.size() >= 4 ? U32(r.body, 0) : 0;
                const auto k = kind_at.find(at);
                if (k == kind_at.end() || k->second != 0x10 || (r.body.size() >= 6 && r.body[5] != 0)) {
                    const bool chart = r.body.size() >= 6 && r.body[5] == 2;
                    out.omitted.push_back(chart ? "la hoja de gráfico \"" + SheetName(r.body) + "\""
                                                : "la hoja \"" + SheetName(r.body) + "\" (no es de celdas)");
                    dropped_last = true;
                    continue;
                }
                boundsheet_fields.push_back(body.size() + 4);
                sheet_offsets.push_back(at);
                body += Record(r.type, r.body);
                dropped_last = false;
                continue;
            }
            case 0x00FC: {  // SST and its continuations, written again in records that fit
                std::vector<std::string> segs{std::string(r.body)};
                while (i + 1 < recs.size() && recs[i + 1].type == 0x003C) segs.emplace_back(recs[++i].body);
                const auto strings = ReadStrings(segs);
                if (!strings) return std::nullopt;
                for (const auto& [type, b] : WriteStrings(*strings, U32(r.body, 0), out.long_texts))
                    body += Record(type, b);
                dropped_last = false;
                continue;
            }
            case 0x0006: {  // FORMULA: its cached result as a plain cell
                dropped_last = true;
                if (r.body.size() < 20) continue;
                const std::string_view cell = r.body.substr(0, 6), result = r.body.substr(6, 8);
                if (U16(result, 6) != 0xFFFF) {
                    body += Record(0x0203, std::string(cell) + std::string(result));  // NUMBER
                } else if (result[0] == 0) {
                    formula = &r;  // the text follows in a STRING record
                } else if (result[0] == 1) {
                    std::string b(cell);
                    b.push_back(result[2] ? 1 : 0);
                    b.push_back(0);
                    body += Record(0x0205, b);  // BOOLERR, a boolean
                }
                continue;
            }
            case 0x0207: {  // STRING: a formula's text result, as a LABEL cell
                dropped_last = true;
                if (!formula || r.body.size() < 3) continue;
                std::vector<std::string> segs{std::string(r.body)};
                while (i + 1 < recs.size() && recs[i + 1].type == 0x003C) segs.emplace_back(recs[++i].body);
                Segments in(segs);
                std::uint16_t cch;
                unsigned char flags;
                std::u16string text;
                if (!in.Word(cch) || !in.Byte(flags) || !in.Chars(cch, flags & 1, text)) continue;
                text.resize(std::min<std::size_t>(text.size(), (kRecordLimit - 9) / 2));
                std::string b(formula->body.substr(0, 6));
                Put16(b, static_cast<std::uint16_t>(text.size()));
                b.push_back(1);
                for (const char16_t c : text) Put16(b, static_cast<std::uint16_t>(c));
                body += Record(0x0204, b);
                formula = nullptr;
                continue;
            }
            // Drawings, charts' objects, comments, the string table's index, what formulas share.
            case 0x00EB:
            case 0x00EC:
            case 0x00ED:
            case 0x005D:
            case 0x01B6:
            case 0x001C:
            case 0x00FF:
            case 0x04BC:
            case 0x0221:
            case 0x0236:
                dropped_last = true;
                continue;
            default:
                break;
        }
        if ((continuation && dropped_last) || r.body.size() > kRecordLimit) {
            dropped_last = true;
            continue;
        }
        if (!continuation) dropped_last = false;
        body += Record(r.type, r.body);
    }
    for (std::size_t k = 0; k < boundsheet_fields.size(); ++k) {
        const auto at = new_offset.find(sheet_offsets[k]);
        if (at == new_offset.end()) return std::nullopt;
        Set32(body, boundsheet_fields[k], static_cast<std::uint32_t>(at->second));
    }
    auto bytes = CompoundWith(std::move(body));
    if (!bytes) return std::nullopt;
    out.bytes = std::move(*bytes);
    return out;
}

}  // namespace cauce::workbook
