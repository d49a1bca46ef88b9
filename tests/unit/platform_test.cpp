// The platform layer: child processes and how they end, atomic replacement, exclusive creation,
// advisory locks and file identities, on the system the tests run on.
#include <gtest/gtest.h>

#include <fstream>

#include "platform/platform.hpp"
#include "tests/unit/test_support.hpp"

namespace cauce::test {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

std::string Slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

struct ChildCase {
    const char* script;  // for /bin/sh -c
    std::string out;
    int exit_code;
    bool killed, timed_out;
};

TEST(PlatformTest, ChildProcessesEndAsTheyDid) {
    const ChildCase cases[] = {
        {"printf 'a\\nb'; exit 3", "a\nb", 3, false, false},
        {"printf x; echo not-seen >&2", "x", 0, false, false},
        {"printf parcial; kill -SEGV $$", "parcial", -1, true, false},
        {"printf antes; exec sleep 30", "antes", -1, true, true},
        {"sleep 30 & printf suelto", "suelto", 0, false, false},  // an orphan keeps nothing waiting
    };
    for (const ChildCase& c : cases) {
        SCOPED_TRACE(c.script);
        const auto r = platform::RunChild({"/bin/sh", "-c", c.script}, 300ms);
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(r.exit_code, c.exit_code);
        EXPECT_EQ(r.killed, c.killed);
        EXPECT_EQ(r.timed_out, c.timed_out);
    }
    try {
        platform::RunChild({"/no/existe/cauce"}, 1s);
        FAIL() << "a missing program started";
    } catch (const platform::Error& e) {
        EXPECT_EQ(e.GetCause(), platform::Cause::NotFound);
    }
}

TEST(PlatformTest, ReplaceFileKeepsPermissionsAndLeavesTheOldFileWholeOnFailure) {
    ScratchDir dir("plataforma-reemplazo");
    const fs::path file = dir.path() / "libro.xlsx";
    platform::ReplaceFile(file, "uno");
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write);
    const auto first = platform::Identify(file);
    platform::ReplaceFile(file, "dos dos");
    const auto second = platform::Identify(file);
    EXPECT_EQ(Slurp(file), "dos dos");
    EXPECT_EQ(fs::status(file).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(second.kind, platform::FileKind::Regular);
    EXPECT_EQ(second.size, 7);
    EXPECT_NE(first, second);  // a new file took the old one's place
    EXPECT_EQ(second, platform::Identify(file));

    EXPECT_THROW(
        platform::ReplaceFile(file, "tres", [](const fs::path&) { throw std::runtime_error("corte"); }),
        std::runtime_error);
    EXPECT_EQ(Slurp(file), "dos dos");
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 1);

    try {
        platform::ReplaceFile(dir.path() / "no-existe" / "libro.xlsx", "x");
        FAIL() << "wrote into a missing folder";
    } catch (const platform::Error& e) {
        EXPECT_EQ(e.Reason(), "la carpeta no existe");
    }
    EXPECT_FALSE(platform::Identify(dir.path() / "no-existe").Exists());
}

TEST(PlatformTest, ExclusiveCreationAndLocksLetOneProcessIn) {
    ScratchDir dir("plataforma-cerrojos");
    const fs::path lock_file = dir.path() / ".~lock.libro.xlsx#";
    EXPECT_TRUE(platform::CreateExclusive(lock_file, "yo;"));
    EXPECT_FALSE(platform::CreateExclusive(lock_file, "otro;"));
    EXPECT_EQ(Slurp(lock_file), "yo;");
    EXPECT_TRUE(platform::RemoveFile(lock_file));
    EXPECT_FALSE(platform::RemoveFile(lock_file));

    // Each lock opens the file anew, as another process would.
    const fs::path guard = dir.path() / ".libro.xlsx.cauce-cerrojo";
    auto held = platform::FileLock::Acquire(guard, 0ms);
    ASSERT_TRUE(held.has_value());
    EXPECT_FALSE(platform::FileLock::Acquire(guard, 20ms).has_value());
    held.reset();
    EXPECT_TRUE(platform::FileLock::Acquire(guard, 0ms).has_value());
}

}  // namespace
}  // namespace cauce::test
