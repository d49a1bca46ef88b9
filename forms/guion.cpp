#include "forms/guion.hpp"

#include <functional>
#include <istream>
#include <nlohmann/json.hpp>
#include <ostream>

#include "forms/val.hpp"
#include "hydraulics/checked_math.hpp"

namespace cauce::forms {

std::string StateJson(const Screen& screen) {
    nlohmann::ordered_json j = nlohmann::ordered_json::object();
    for (const auto& c : screen.Controls()) j[c.name] = c.text;
    if (screen.Source()) j["registro"] = screen.RecordPosition();
    if (!screen.Notice().empty()) j["aviso"] = screen.Notice();
    if (screen.LastError()) j["error"] = screen.LastError()->what();
    return j.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

namespace {

struct Line {
    std::string verb, rest;
};

Line Split(const std::string& s) {
    const auto sp = s.find(' ');
    if (sp == std::string::npos) return {s, ""};
    return {s.substr(0, sp), s.substr(sp + 1)};
}

}  // namespace

int RunScript(std::istream& in, std::ostream& out, std::ostream& err, const ScreenFactory& make) {
    std::unique_ptr<Screen> screen;
    std::string raw;
    bool ended = false;
    int number = 0;
    auto fail = [&](const std::string& why) {
        err << "guion: línea " << number << ": " << why << "\n";
        return 2;
    };
    // A workbook operation: its fault ends the run with status 1 (the file is as it was); what it
    // has to tell the user goes to the error stream as well as into the "aviso" key.
    auto workbook = [&](const std::function<void()>& op, bool opening = false) {
        const std::string where = ended ? "al terminar" : "línea " + std::to_string(number);
        const std::string before = screen->Notice();
        try {
            op();
        } catch (const Fault& f) {
            err << "guion: " << where << ": " << f.what() << "\n";
            return false;
        }
        const std::string& notice = screen->Notice();
        if (!notice.empty() && (opening || notice != before))
            err << "guion: " << where << ": " << notice << "\n";
        return true;
    };
    while (std::getline(in, raw)) {
        ++number;
        if (!raw.empty() && raw.back() == '\r') raw.pop_back();
        if (number == 1 && raw.rfind("\xEF\xBB\xBF", 0) == 0) raw.erase(0, 3);  // a UTF-8 byte-order mark
        if (raw.empty() || raw[0] == '#') continue;
        if (raw.find_first_not_of(" \t") == std::string::npos) continue;
        const Line line = Split(raw);

        if (line.verb == "pantalla") {
            if (screen && !workbook([&] { screen->SavePending(); })) return 1;
            auto next = make(line.rest);
            if (!next) return fail("pantalla desconocida: \"" + line.rest + "\" (Form1 a Form5)");
            screen = std::move(next);
            continue;
        }
        if (!screen) return fail("primero hay que abrir una pantalla (pantalla FormN)");

        if (line.verb == "escribir") {
            const auto sp = line.rest.find(' ');
            const std::string name = line.rest.substr(0, sp);
            const std::string text = sp == std::string::npos ? "" : line.rest.substr(sp + 1);
            const Control* c = screen->Find(name);
            if (!c) return fail("control desconocido: \"" + name + "\"");
            if (c->kind != Kind::TextBox) return fail(name + " no es un cuadro de texto");
            screen->Type(name, text);
        } else if (line.verb == "oprimir") {
            const Control* c = screen->Find(line.rest);
            if (!c) return fail("control desconocido: \"" + line.rest + "\"");
            if (c->kind != Kind::CommandButton) return fail(line.rest + " no es un botón");
            screen->Click(line.rest);
            if (screen->Closed()) return workbook([&] { screen->SavePending(); }) ? 0 : 1;
        } else if (line.verb == "mostrar") {
            if (!line.rest.empty()) return fail("\"mostrar\" no lleva argumentos");
            out << StateJson(*screen) << "\n";
        } else if (line.verb == "libro") {
            if (!screen->HasData()) return fail(screen->Name() + " no tiene libro de datos (Data1)");
            if (line.rest.empty()) return fail("falta la ruta del libro (libro RUTA)");
            if (!workbook([&] { screen->OpenWorkbook(line.rest); }, true)) return 1;
        } else if (line.verb == "registro") {
            if (!screen->HasData()) return fail(screen->Name() + " no tiene libro de datos (Data1)");
            std::function<void()> move;
            if (line.rest == "primero") {
                move = [&] { screen->MoveFirst(); };
            } else if (line.rest == "anterior") {
                move = [&] { screen->MovePrevious(); };
            } else if (line.rest == "siguiente") {
                move = [&] { screen->MoveNext(); };
            } else if (line.rest == "último" || line.rest == "ultimo") {
                move = [&] { screen->MoveLast(); };
            } else {
                const auto p = line.rest.find_first_not_of("0123456789");
                if (line.rest.empty() || p != std::string::npos || line.rest.size() > 9)
                    return fail("número de registro no válido: \"" + line.rest + "\"");
                const int n = std::stoi(line.rest);
                move = [&screen, n] { screen->MoveTo(n); };
            }
            if (!workbook(move)) return 1;
        } else {
            return fail("orden desconocida: \"" + line.verb +
                        "\" (pantalla, escribir, oprimir, libro, registro, mostrar)");
        }
    }
    ended = true;  // the saves from here on belong to no line of the script
    if (screen && !workbook([&] { screen->SavePending(); })) return 1;
    return 0;
}

}  // namespace cauce::forms
