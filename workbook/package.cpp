#include "workbook/package.hpp"

#include <zip.h>

#include <algorithm>
#include <cctype>

#include "base/fault.hpp"
#include "workbook/limits.hpp"

namespace cauce::workbook {

namespace {

std::string Damaged(const std::string& file, const std::string& why) {
    return "El libro \"" + file + "\" está dañado: " + why + ". El archivo no se modificó.";
}

// What a libzip error means to the user.
std::string ZipReason(int code) {
    switch (code) {
        case ZIP_ER_NOZIP:
            return "no es un archivo zip completo (¿está truncado?)";
        case ZIP_ER_INCONS:
            return "el archivo zip es incoherente (¿está truncado o dañado?)";
        case ZIP_ER_EOF:
            return "el archivo termina antes de tiempo (está truncado)";
        case ZIP_ER_CRC:
            return "los datos de una parte no pasan la verificación CRC";
        case ZIP_ER_ZLIB:
        case ZIP_ER_COMPRESSED_DATA:
            return "los datos comprimidos de una parte están dañados";
        case ZIP_ER_COMPNOTSUPP:
            return "una parte usa un método de compresión que Cauce no conoce";
        case ZIP_ER_ENCRNOTSUPP:
        case ZIP_ER_NOPASSWD:
        case ZIP_ER_WRONGPASSWD:
            return "tiene partes cifradas";
        case ZIP_ER_MULTIDISK:
            return "es un zip de varios volúmenes";
        case ZIP_ER_MEMORY:
            return "no hay memoria suficiente para leerlo";
        case ZIP_ER_SEEK:
        case ZIP_ER_READ:
        case ZIP_ER_TELL:
            return "no se puede leer una parte del archivo zip";
        case ZIP_ER_INVAL:
            return "una parte del archivo zip es incoherente (¿está dañado?)";
        case ZIP_ER_NOENT:
            return "falta una parte que el índice del archivo zip nombra";
        case ZIP_ER_INTERNAL:
            return "el archivo zip no se pudo interpretar";
        default:
            // libzip's own words are English: only the number is kept.
            return "error del archivo zip número " + std::to_string(code);
    }
}

std::string Lower(std::string s) {
    std::transform(s.begin(), s.end(), s.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return s;
}

std::string MiB(std::uint64_t bytes) {
    return std::to_string(bytes >> 20) + " MB";
}

}  // namespace

struct Package::Zip {
    zip_t* za = nullptr;
    ~Zip() {
        if (za) zip_discard(za);
    }
};

Package::Package(std::string bytes, std::string file)
    : bytes_(std::move(bytes)), file_(std::move(file)), zip_(new Zip) {
    zip_error_t err;
    zip_error_init(&err);
    zip_source_t* src = zip_source_buffer_create(bytes_.data(), bytes_.size(), 0, &err);
    if (!src) raise(FaultCode::FileDamaged, Damaged(file_, ZipReason(zip_error_code_zip(&err))));
    // No ZIP_CHECKCONS: it refuses harmless differences between local and central headers that some
    // writers leave; damage still shows, as every part read is checked against its CRC.
    zip_->za = zip_open_from_source(src, ZIP_RDONLY, &err);
    if (!zip_->za) {
        zip_source_free(src);
        const int code = zip_error_code_zip(&err);
        zip_error_fini(&err);
        raise(FaultCode::FileDamaged, Damaged(file_, ZipReason(code)));
    }
    zip_error_fini(&err);
    const zip_int64_t n = zip_get_num_entries(zip_->za, 0);
    if (n < 0 || static_cast<std::uint64_t>(n) > kMaxEntries)
        raise(FaultCode::FileDamaged,
              "El libro \"" + file_ + "\" se rechaza: tiene demasiadas partes (" + std::to_string(n) + ").");
    for (zip_int64_t i = 0; i < n; ++i) {
        const char* name = zip_get_name(zip_->za, static_cast<zip_uint64_t>(i), 0);
        if (!name) raise(FaultCode::FileDamaged, Damaged(file_, "una parte no tiene nombre"));
        names_.emplace_back(name);
        // Parts Cauce never reads are copied as they are when saving, which needs their headers whole
        // and their stored bytes inside the file: a workbook that could not be saved is refused now,
        // before any work is done on it. Reading them still compressed checks both.
        zip_file_t* f = zip_fopen_index(zip_->za, static_cast<zip_uint64_t>(i), ZIP_FL_COMPRESSED);
        if (!f)
            raise(FaultCode::FileDamaged,
                  Damaged(file_,
                          ZipReason(zip_error_code_zip(zip_get_error(zip_->za))) + " (parte " + name + ")"));
        char buf[65536];
        zip_int64_t got = 0;
        while ((got = zip_fread(f, buf, sizeof buf)) > 0) {
        }
        if (got < 0) {
            const int code = zip_error_code_zip(zip_file_get_error(f));
            zip_fclose(f);
            raise(FaultCode::FileDamaged, Damaged(file_, ZipReason(code) + " (parte " + name + ")"));
        }
        zip_fclose(f);
    }
}

Package::~Package() = default;

std::string Package::Find(const std::string& name) const {
    const std::string want = Lower(name);
    for (const auto& n : names_)
        if (Lower(n) == want) return n;
    return "";
}

std::string Package::Read(const std::string& name) {
    const std::string stored = Find(name);
    if (stored.empty()) raise(FaultCode::FileDamaged, Damaged(file_, "falta la parte " + name));
    const zip_int64_t index = zip_name_locate(zip_->za, stored.c_str(), 0);
    zip_stat_t st;
    zip_stat_init(&st);
    if (index < 0 || zip_stat_index(zip_->za, static_cast<zip_uint64_t>(index), 0, &st) != 0)
        raise(FaultCode::FileDamaged, Damaged(file_, "no se puede leer la parte " + name));
    auto bomb = [&] {
        raise(FaultCode::FileDamaged, "El libro \"" + file_ + "\" se rechaza: la parte " + stored +
                                          " se expande a más de " + MiB(kMaxPartBytes) +
                                          " (parece una bomba zip). El archivo no se modificó.");
    };
    // The declared size may lie: it only lets an honest oversized part be refused before reading.
    if ((st.valid & ZIP_STAT_SIZE) && st.size > kMaxPartBytes) bomb();
    zip_file_t* f = zip_fopen_index(zip_->za, static_cast<zip_uint64_t>(index), 0);
    if (!f)
        raise(FaultCode::FileDamaged, Damaged(file_, ZipReason(zip_error_code_zip(zip_get_error(zip_->za)))));
    std::string out;
    char buf[65536];
    for (;;) {
        const zip_int64_t got = zip_fread(f, buf, sizeof buf);
        if (got < 0) {
            const int code = zip_error_code_zip(zip_file_get_error(f));
            zip_fclose(f);
            raise(FaultCode::FileDamaged, Damaged(file_, ZipReason(code) + " (parte " + stored + ")"));
        }
        if (got == 0) break;
        out.append(buf, static_cast<std::size_t>(got));
        if (out.size() > kMaxPartBytes) {
            zip_fclose(f);
            bomb();
        }
    }
    const int closed = zip_fclose(f);
    if (closed != 0)
        raise(FaultCode::FileDamaged, Damaged(file_, ZipReason(closed) + " (parte " + stored + ")"));
    expanded_ += out.size();
    if (expanded_ > kMaxTotalBytes)
        raise(FaultCode::FileDamaged,
              "El libro \"" + file_ + "\" se rechaza: sus partes se expanden a más de " +
                  MiB(kMaxTotalBytes) + " (parece una bomba zip). El archivo no se modificó.");
    return out;
}

namespace {

// Writes an archive into memory through libzip; add() is called with the open archive.
template <typename AddParts>
std::string WriteArchive(const std::string& file, AddParts add) {
    auto fail = [&](const std::string& why) {
        raise(FaultCode::FileNotSaved, "No se pudo preparar el libro \"" + file + "\": " + why + ".");
    };
    zip_error_t err;
    zip_error_init(&err);
    zip_source_t* out_src = zip_source_buffer_create(nullptr, 0, 0, &err);
    if (!out_src) fail(ZipReason(zip_error_code_zip(&err)));
    zip_t* out = zip_open_from_source(out_src, ZIP_TRUNCATE, &err);
    if (!out) {
        zip_source_free(out_src);
        fail(ZipReason(zip_error_code_zip(&err)));
    }
    zip_error_fini(&err);
    zip_source_keep(out_src);  // read the result back after zip_close
    try {
        add(out);
    } catch (...) {
        zip_discard(out);
        zip_source_free(out_src);
        throw;
    }
    if (zip_close(out) != 0) {
        const std::string why = ZipReason(zip_error_code_zip(zip_get_error(out)));
        zip_discard(out);
        zip_source_free(out_src);
        fail(why);
    }
    std::string bytes;
    zip_stat_t st;
    zip_stat_init(&st);
    if (zip_source_stat(out_src, &st) != 0 || zip_source_open(out_src) != 0) {
        zip_source_free(out_src);
        fail("no se pudo leer el resultado");
    }
    bytes.resize(static_cast<std::size_t>(st.size));
    const zip_int64_t got = bytes.empty() ? 0 : zip_source_read(out_src, bytes.data(), bytes.size());
    zip_source_close(out_src);
    zip_source_free(out_src);
    if (got != static_cast<zip_int64_t>(bytes.size())) fail("no se pudo leer el resultado");
    return bytes;
}

void AddBuffer(zip_t* out, const std::string& name, const std::string& data, const std::string& file) {
    zip_source_t* s = zip_source_buffer(out, data.data(), data.size(), 0);
    const zip_int64_t idx = s ? zip_file_add(out, name.c_str(), s, ZIP_FL_ENC_UTF_8) : -1;
    if (idx < 0) {
        if (s) zip_source_free(s);
        raise(FaultCode::FileNotSaved, "No se pudo preparar el libro \"" + file +
                                           "\": " + ZipReason(zip_error_code_zip(zip_get_error(out))) + ".");
    }
    zip_set_file_compression(out, static_cast<zip_uint64_t>(idx), ZIP_CM_DEFLATE, 0);
}

}  // namespace

std::string Package::Write(const std::map<std::string, std::string>& replaced,
                           const std::set<std::string>& removed) const {
    return WriteArchive(file_, [&](zip_t* out) {
        std::set<std::string> done;
        for (zip_uint64_t i = 0; i < names_.size(); ++i) {
            const std::string& name = names_[i];
            if (removed.count(name)) continue;
            if (const auto it = replaced.find(name); it != replaced.end()) {
                AddBuffer(out, name, it->second, file_);
                done.insert(name);
                continue;
            }
            zip_stat_t st;
            zip_stat_init(&st);
            zip_stat_index(zip_->za, i, 0, &st);
            // Still compressed: the part comes out byte for byte as it was.
            zip_source_t* s = zip_source_zip(out, zip_->za, i, ZIP_FL_COMPRESSED, 0, -1);
            const zip_int64_t idx = s ? zip_file_add(out, name.c_str(), s, 0) : -1;
            if (idx < 0) {
                if (s) zip_source_free(s);
                raise(FaultCode::FileNotSaved, "No se pudo preparar el libro \"" + file_ + "\": " +
                                                   ZipReason(zip_error_code_zip(zip_get_error(out))) + ".");
            }
            if (st.valid & ZIP_STAT_MTIME)
                zip_file_set_mtime(out, static_cast<zip_uint64_t>(idx), st.mtime, 0);
        }
        for (const auto& [name, data] : replaced)
            if (!done.count(name)) AddBuffer(out, name, data, file_);
        int length = 0;
        if (const char* comment = zip_get_archive_comment(zip_->za, &length, ZIP_FL_ENC_RAW);
            comment && length > 0)
            zip_set_archive_comment(out, comment, static_cast<zip_uint16_t>(length));
    });
}

std::string NewPackage(const std::vector<std::pair<std::string, std::string>>& parts,
                       const std::string& file) {
    return WriteArchive(file, [&](zip_t* out) {
        for (const auto& [name, data] : parts) AddBuffer(out, name, data, file);
    });
}

}  // namespace cauce::workbook
