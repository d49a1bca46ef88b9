// Records of a profile sheet turned into the standard-step reach.
#include "screens/standard_reach.hpp"

#include <map>

#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"
#include "screens/natural_screen.hpp"

namespace cauce::screens {

namespace {

// The sheet's cells, with the boxes of the record shown in place of its stored cells.
class Records {
  public:
    explicit Records(const forms::Screen& screen) : src_(screen.Source()), shown_(screen.Record()) {
        for (const auto& c : screen.Controls())
            if (!c.column.empty()) boxes_[c.column] = c.text;
    }
    int Count() const { return src_ ? src_->RecordCount() : 0; }
    bool Has(const std::string& column) const { return src_ && src_->HasColumn(column); }
    std::string Text(int record, const std::string& column) const {
        if (record == shown_) {
            const auto it = boxes_.find(column);
            if (it != boxes_.end()) return it->second;
        }
        return Has(column) ? src_->Get(record, column) : "";
    }
    double Number(int record, const std::string& column) const { return forms::Val(Text(record, column)); }
    int Shown() const { return shown_; }

  private:
    const forms::RecordSource* src_;
    int shown_;
    std::map<std::string, std::string> boxes_;
};

bool OwnChainage(const forms::Screen& screen) {
    return screen.Name() == "Form3";
}

standard_step::SectionInput SectionOf(const Records& r, int record, int number, bool own_chainage) {
    standard_step::SectionInput s;
    s.number = number;
    for (int j = 1; j <= 15; ++j) {
        const double z = r.Number(record, "z" + std::to_string(j));
        if (z == 0) break;  // an elevation of 0 ends the levels, as on the screens
        s.z.push_back(z);
        s.t.push_back(r.Number(record, "t" + std::to_string(j)));
    }
    s.n = r.Number(record, "Rugosidad");
    s.slope = r.Number(record, r.Has("Si") ? "Si" : "So");
    s.q = r.Number(record, "Caudal");
    s.flood_width = r.Number(record, "Ancho Zi");
    s.flood_n = r.Number(record, "Rugosidad Zi");
    if (own_chainage) {
        s.chainage = r.Number(record, "Abscisa");
        s.grain_size = r.Number(record, "Darrastre") / 1000;
    } else {
        s.chainage = r.Number(r.Shown(), "Abscisa" + std::to_string(number));
    }
    return s;
}

}  // namespace

StandardReach StandardReachOf(const forms::Screen& screen, double downstream_depth) {
    StandardReach out;
    const Records r(screen);
    const bool own = OwnChainage(screen);
    try {
        if (r.Count() == 0 || r.Shown() < 1) {
            out.error = "No hay registros: abra el libro del tramo.";
            return out;
        }
        const int n = forms::CInt(r.Number(r.Shown(), "No# secciones"));
        if (n < 2) {
            out.error = "El registro mostrado no dice un número de secciones de 2 o más.";
            return out;
        }
        if (!own && n > 15) {
            out.error = "El tramo tiene " + std::to_string(n) + " secciones y la tabla solo 15 abscisas.";
            return out;
        }
        std::map<int, int> record_of;  // section number -> its first record
        for (int rec = 1; rec <= r.Count(); ++rec) {
            const int i = forms::CInt(r.Number(rec, "SecId"));
            if (i >= 1 && i <= n && !record_of.count(i)) record_of[i] = rec;
        }
        for (int i = 1; i <= n; ++i) {
            const auto it = record_of.find(i);
            if (it == record_of.end()) {
                out.error = "Falta la sección " + std::to_string(i) + " en la hoja.";
                out.input.sections.clear();
                return out;
            }
            out.input.sections.push_back(SectionOf(r, it->second, i, own));
        }
    } catch (const Fault& f) {
        out.error = f.what();
        out.input.sections.clear();
        return out;
    }
    out.input.downstream_depth = downstream_depth;
    return out;
}

standard_step::LegacyRun LegacyRunOf(const forms::Screen& screen) {
    standard_step::LegacyRun run;
    if (const auto* natural = dynamic_cast<const NaturalScreen*>(&screen)) run.state = &natural->State();
    run.fifteen_boxes = !OwnChainage(screen);
    const Records r(screen);
    try {
        if (r.Shown() >= 1) {
            run.abscisa8 = r.Number(r.Shown(), "Abscisa8");
            run.abscisa9 = r.Number(r.Shown(), "Abscisa9");
        }
    } catch (const Fault&) {
    }
    return run;
}

std::vector<std::string> StandardHeads() {
    return {"Sección", "Abscisa m", "Y m", "Z agua m", "Z energía m",
            "V m/s",   "Froude",    "Sf",  "Régimen",  "Yc m"};
}

std::vector<std::string> StandardCells(const standard_step::SectionResult& s,
                                       std::string (*fixed)(double value, int decimals)) {
    return {std::to_string(s.number),
            fixed(s.chainage, 2),
            fixed(s.y, 3),
            fixed(s.z_water, 3),
            fixed(s.z_energy, 3),
            fixed(s.v, 2),
            fixed(s.froude, 2),
            fixed(s.sf, 6),
            standard_step::RegimeName(s.regime),
            fixed(s.yc, 3)};
}

}  // namespace cauce::screens
