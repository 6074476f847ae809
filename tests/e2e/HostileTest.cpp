// The real program among missing, broken and odd files, and on a disk that refuses to be written:
// what it prints, that the intro still shows or the game still runs, and how it ends.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/support/ResourceFiles.h"
#include "tests/support/GameProcess.h"
#include "tests/support/StartupReport.h"

using e2e::GameProcess;
using e2e::Image;
using e2e::Surroundings;
using e2e::memoryLine;
using testing_support::FONT_FILES;
using testing_support::TEXTURE_FILES;
using testing_support::loadingLines;

namespace {

const std::string ROOT = REPOSITORY_ROOT;
const char* const DATA_FOLDERS[] = {"gfx", "sfx", "shaders"};

// The intro's title line: its top row, and the cell height of the repository's medium font.
const int TITLE_TOP = 25, TITLE_CELL = 32;

std::string readRepositoryFile(const std::string& file) {
    std::ifstream in(ROOT + "/" + file, std::ios::binary);
    return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// gfx/, sfx/ and shaders/ linked from the repository, except that the folder holding `replaced`
// (such as "gfx/medfont.png") is a real one with links to every file but that one.
void linkDataExcept(Surroundings& dir, const std::string& replaced = "") {
    for (const char* folder : DATA_FOLDERS) {
        std::string prefix = std::string(folder) + "/";
        if (replaced.rfind(prefix, 0) == 0)
            dir.linkFolderExcept(folder, replaced.substr(prefix.size()));
        else
            dir.linkFolder(folder);
    }
}

// Runs `script` with Debian's Python and PIL in `dir`; true when it succeeded.
bool runPython(const Surroundings& dir, const std::string& script) {
    const std::string file = dir.path() + "/.make_image.py";
    std::ofstream(file) << "from PIL import Image\n" << script;
    int status = system(("cd '" + dir.path() + "' && /usr/bin/python3 .make_image.py").c_str());
    unlink(file.c_str());
    return status == 0;
}

// Whether `errors` is one or more lines, each of them libpng's own complaint about a broken file.
bool onlyDecoderLines(const std::string& errors) {
    if (errors.empty() || errors.back() != '\n') return false;
    for (size_t start = 0; start < errors.size(); start = errors.find('\n', start) + 1)
        if (errors.compare(start, 14, "libpng error: ") != 0) return false;
    return true;
}

// Waits until standard error holds `text`; false when the process ended or time ran out first.
bool waitForErrors(GameProcess& game, const std::string& text, int timeoutMs = 20000) {
    for (int waited = 0; waited <= timeoutMs; waited += 20) {
        if (game.errors().find(text) != std::string::npos) return true;
        if (!game.isRunning()) return game.errors().find(text) != std::string::npos;
        e2e::pause(20);
    }
    return false;
}

// Loading is over: the memory report is the last line of start-up.
void waitForStartUp(GameProcess& game) {
    ASSERT_TRUE(game.waitForOutput("megabytes\n")) << game.output() << game.errors();
}

// Takes screenshot `name` of the intro and gives the ink columns of its title line, whose cells
// are `cellHeight` pixels high.
void titleInk(GameProcess& game, const Surroundings& dir, const std::string& name, int cellHeight,
              std::pair<int, int>& ink) {
    e2e::pause(500);
    ASSERT_TRUE(game.screenshot(name));
    Image shot;
    ASSERT_TRUE(e2e::loadBmp(dir.path() + "/" + name, shot));
    ASSERT_EQ(shot.width, 1280);
    ASSERT_EQ(shot.height, 720);
    EXPECT_EQ(shot.at(0, 0), Image::BACKGROUND) << "the intro's top left corner is not background";
    ink = shot.inkColumns(TITLE_TOP, TITLE_TOP + cellHeight);
}

// The intro shows its title, centred on x = 640.
void expectTitleShows(GameProcess& game, const Surroundings& dir, int cellHeight = TITLE_CELL) {
    std::pair<int, int> ink;
    ASSERT_NO_FATAL_FAILURE(titleInk(game, dir, "screenshot_1.bmp", cellHeight, ink));
    ASSERT_GE(ink.first, 0) << "no title on the intro screen";
    EXPECT_NEAR((ink.first + ink.second) / 2.0, 640, 12);
}

// Return leaves the intro for the game, which runs until Escape ends it with status 0.
void expectPlayThenQuit(GameProcess& game) {
    game.tapKey("Return");
    // The fade to black takes a second, the fade into the game half a second more.
    e2e::pause(2500);
    EXPECT_TRUE(game.isRunning());
    EXPECT_EQ(game.escapeAndWaitForExit(), 0) << game.errors();
}

// Mounts made here live in a mount namespace of the test process's own, with propagation cut, so
// they never show outside it and vanish with the process. Empty when it could be had, else why not.
std::string privateMounts() {
    static std::string failure = "unset";
    if (failure == "unset") {
        if (unshare(CLONE_NEWNS) != 0)
            failure = std::string("unshare(CLONE_NEWNS): ") + strerror(errno);
        else if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            failure = std::string("making / private: ") + strerror(errno);
        else
            failure = "";
    }
    return failure;
}

// A mount on `target` for the length of a test, detached again when it goes. Declared before the
// game process, it outlives the game.
class Mount {
public:
    Mount(const std::string& target, const char* source, const char* type, unsigned long flags,
          const char* options)
        : target(target) {
        if (mount(source, target.c_str(), type, flags, options) != 0) failure = strerror(errno);
    }
    ~Mount() {
        if (failure.empty()) umount2(target.c_str(), MNT_DETACH);
    }
    Mount(const Mount&) = delete;
    Mount& operator=(const Mount&) = delete;

    // Changes the flags of the mount in place (MS_REMOUNT is added); the reason when it failed.
    std::string remount(unsigned long flags) {
        bool isDone = mount(nullptr, target.c_str(), nullptr, MS_REMOUNT | flags, nullptr) == 0;
        return isDone ? "" : strerror(errno);
    }

    std::string target;
    std::string failure; // empty when mounted
};

// Points the game's stdout.txt and stderr.txt at files in `elsewhere`, so that its output can still
// be written whatever becomes of its working directory.
void keepOutputIn(const Surroundings& dir, const Surroundings& elsewhere) {
    for (const char* name : {"stdout.txt", "stderr.txt"})
        ASSERT_EQ(symlink((elsewhere.path() + "/" + name).c_str(), (dir.path() + "/" + name).c_str()), 0);
}

// Writes into `path` until the file system has no room left; the errno that stopped it.
int fillUp(const std::string& path) {
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0) return errno;
    static const char block[65536] = {};
    int error = 0;
    while (!error)
        if (write(fd, block, sizeof block) < 0) error = errno;
    close(fd);
    return error;
}

} // namespace

TEST(HostileSurroundings, EmptyImageFolderEndsEveryLoadingLineInErrorAndTheGameStillRuns) {
    Surroundings dir;
    ASSERT_EQ(mkdir((dir.path() + "/gfx").c_str(), 0755), 0);
    dir.linkFolder("sfx");
    dir.linkFolder("shaders");
    std::set<std::string> all(std::begin(TEXTURE_FILES), std::end(TEXTURE_FILES));
    all.insert(std::begin(FONT_FILES), std::end(FONT_FILES));
    std::map<std::string, e2e::ImageSize> none;
    for (const std::string& f : all) none[f] = {0, 0};
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines(all) + memoryLine(none));
    EXPECT_EQ(game.errors(), "");
    // Without fonts the intro has no text to show, but it still takes screenshots.
    e2e::pause(300);
    EXPECT_TRUE(game.screenshot("screenshot_1.bmp"));
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, ZeroBytePngEndsItsLineInErrorAndTheGameStillRuns) {
    Surroundings dir;
    linkDataExcept(dir, "gfx/player_mid.png");
    dir.writeFile("gfx/player_mid.png", "");
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(),
              loadingLines({"gfx/player_mid.png"}) + memoryLine({{"gfx/player_mid.png", {0, 0}}}));
    EXPECT_EQ(game.errors(), "");
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, JpegUnderAPngNameLoadsAndItsTextShows) {
    Surroundings dir;
    linkDataExcept(dir, "gfx/medfont.png");
    // The medium font flattened onto black (JPEG has no alpha), under the PNG's name.
    ASSERT_TRUE(runPython(dir, "im = Image.open('" + ROOT +
                                   "/gfx/medfont.png').convert('RGBA')\n"
                                   "flat = Image.new('RGB', im.size)\n"
                                   "flat.paste(im, mask=im.split()[3])\n"
                                   "flat.save('gfx/medfont.png', 'JPEG', quality=95)\n"));
    std::ifstream written(dir.path() + "/gfx/medfont.png", std::ios::binary);
    char magic[3] = {};
    written.read(magic, 3);
    ASSERT_EQ(std::string(magic, 3), "\xFF\xD8\xFF") << "not a JPEG";
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine());
    EXPECT_EQ(game.errors(), "");
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, PngCutOffAfterItsHeaderEndsItsLineInErrorAndTheGameStillRuns) {
    Surroundings dir;
    linkDataExcept(dir, "gfx/hud_score.png");
    // The 8-byte signature and the 25-byte header chunk, then nothing: a size but no pixels.
    dir.writeFile("gfx/hud_score.png", readRepositoryFile("gfx/hud_score.png").substr(0, 33));
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(),
              loadingLines({"gfx/hud_score.png"}) + memoryLine({{"gfx/hud_score.png", {0, 0}}}));
    // The PNG decoder states its own complaint; the program adds nothing to the ERROR above.
    EXPECT_TRUE(onlyDecoderLines(game.errors())) << game.errors();
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, ImageFarLargerThanTheScreenLoadsAndIsCountedWhole) {
    Surroundings dir;
    linkDataExcept(dir, "gfx/hud_score.png");
    ASSERT_TRUE(
        runPython(dir, "Image.new('RGBA', (4096, 4096), (0, 200, 255, 255)).save('gfx/hud_score.png')\n"));
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine({{"gfx/hud_score.png", {4096, 4096}}}));
    EXPECT_EQ(game.errors(), "");
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, NonPowerOfTwoFontIsPaddedAndItsTitleShowsCentred) {
    Surroundings dir;
    linkDataExcept(dir, "gfx/medfont.png");
    // 256 x 512 stretched to 288 x 544: cells of 18 x 34, in a texture padded to 512 x 1024. The
    // thirteen intro lines still fit on the screen.
    ASSERT_TRUE(
        runPython(dir, "Image.open('" + ROOT +
                           "/gfx/medfont.png').resize((288, 544), Image.NEAREST).save('gfx/medfont.png')\n"));
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine({{"gfx/medfont.png", {288, 544}}}));
    EXPECT_EQ(game.errors(), "");
    std::pair<int, int> ink;
    ASSERT_NO_FATAL_FAILURE(titleInk(game, dir, "screenshot_1.bmp", 34, ink));
    ASSERT_GE(ink.first, 0) << "no title on the intro screen";
    EXPECT_NEAR((ink.first + ink.second) / 2.0, 640, 12);
    // "Nightvector" is 11 cells of 18 pixels, centred: within [541, 739].
    EXPECT_GE(ink.first, 640 - 99);
    EXPECT_LE(ink.second, 640 + 99);
    // Wider than the 11 cells of 16 pixels of the original font.
    EXPECT_GT(ink.second - ink.first + 1, 11 * 16);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, ShaderThatDoesNotCompileIsReportedAndTheDefaultStageDrawsInstead) {
    Surroundings dir;
    // The fader's program: its own fragment stage does what the default one does, so the intro
    // looks as always once the default stands in.
    linkDataExcept(dir, "shaders/color_fixed.frag");
    dir.writeFile("shaders/color_fixed.frag", "void main() { this is not GLSL }\n");
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine());
    // One line; the reason after the file name is the GL driver's own wording.
    const std::string prefix = "Could not compile shaders/color_fixed.frag: ";
    std::string errors = game.errors();
    EXPECT_EQ(errors.rfind(prefix, 0), 0u) << errors;
    EXPECT_EQ(errors.find('\n'), errors.size() - 1) << errors;
    EXPECT_NE(errors.find("error", prefix.size()), std::string::npos) << errors;
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, EmptyShaderFileIsReportedAndTheDefaultStageDrawsInstead) {
    Surroundings dir;
    // The vertex stage of every textured draw; the default one places vertices the same way.
    linkDataExcept(dir, "shaders/texture_fixed.vert");
    dir.writeFile("shaders/texture_fixed.vert", "");
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine());
    EXPECT_EQ(game.errors(), "Could not compile shaders/texture_fixed.vert: empty source\n");
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, MusicCutToOneKilobyteIsReportedAndTheGameRunsSilently) {
    Surroundings dir;
    linkDataExcept(dir, "sfx/music1.ogg");
    dir.writeFile("sfx/music1.ogg", readRepositoryFile("sfx/music1.ogg").substr(0, 1024));
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine());
    EXPECT_EQ(game.errors(), "Could not load sfx/music1.ogg: Not an Ogg Vorbis audio stream\n");
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, RandomBytesAsMusicAreReportedAndTheGameRunsSilently) {
    Surroundings dir;
    linkDataExcept(dir, "sfx/music1.ogg");
    std::mt19937 random(20111111);
    std::string noise(65536, '\0');
    for (char& c : noise) c = (char)(random() & 0xff);
    dir.writeFile("sfx/music1.ogg", noise);
    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine());
    EXPECT_EQ(game.errors(), "Could not load sfx/music1.ogg: Not an Ogg Vorbis audio stream\n");
    expectTitleShows(game, dir);
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, ScreenshotInReadOnlyDirectoryFailsWithMessageAndTheGameRunsOn) {
    // Root writes past permission bits, so the directory is bind-mounted read-only onto itself.
    std::string unavailable = privateMounts();
    if (!unavailable.empty()) GTEST_SKIP() << "no mount namespace of our own: " << unavailable;
    Surroundings dir, elsewhere;
    linkDataExcept(dir);
    ASSERT_NO_FATAL_FAILURE(keepOutputIn(dir, elsewhere));
    Mount bind(dir.path(), dir.path().c_str(), nullptr, MS_BIND, nullptr);
    if (!bind.failure.empty()) GTEST_SKIP() << "cannot bind-mount here: " << bind.failure;
    ASSERT_EQ(bind.remount(MS_BIND | MS_RDONLY), "");
    ASSERT_NE(access(dir.path().c_str(), W_OK), 0);

    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine());
    game.tapKey("F1");
    EXPECT_TRUE(waitForErrors(game, "\n"));
    EXPECT_EQ(game.errors(), "Could not write screenshot_1.bmp: Read-only file system\n");
    EXPECT_FALSE(dir.exists("screenshot_1.bmp"));
    EXPECT_TRUE(game.isRunning());
    // Writable again, the next F1 saves under the next number: the failed one still counted.
    ASSERT_EQ(bind.remount(MS_BIND), "");
    EXPECT_TRUE(game.screenshot("screenshot_2.bmp"));
    EXPECT_FALSE(dir.exists("screenshot_1.bmp"));
    expectPlayThenQuit(game);
}

TEST(HostileSurroundings, ScreenshotOnAFullDiskFailsWithMessageLeavesNoFileAndTheGameRunsOn) {
    // A small tmpfs mounted on the working directory (we are root), filled once the game has started.
    std::string unavailable = privateMounts();
    if (!unavailable.empty()) GTEST_SKIP() << "no mount namespace of our own: " << unavailable;
    Surroundings dir, elsewhere;
    // Room for one 24-bit 1280 x 720 screenshot (2.7 MB) once the filling is removed again.
    Mount disk(dir.path(), "nightvector-e2e", "tmpfs", 0, "size=4m");
    if (!disk.failure.empty()) GTEST_SKIP() << "cannot mount a tmpfs here: " << disk.failure;
    linkDataExcept(dir);
    ASSERT_NO_FATAL_FAILURE(keepOutputIn(dir, elsewhere));

    GameProcess game(dir.path());
    ASSERT_NO_FATAL_FAILURE(waitForStartUp(game));
    EXPECT_EQ(game.output(), loadingLines({}) + memoryLine());
    ASSERT_EQ(fillUp(dir.path() + "/filling"), ENOSPC);
    game.tapKey("F1");
    EXPECT_TRUE(waitForErrors(game, "\n"));
    EXPECT_EQ(game.errors(), "Could not write screenshot_1.bmp: No space left on device\n");
    EXPECT_FALSE(dir.exists("screenshot_1.bmp"));
    EXPECT_TRUE(game.isRunning());
    // With room again, the next F1 saves under the next number: the failed one still counted.
    ASSERT_EQ(unlink((dir.path() + "/filling").c_str()), 0);
    EXPECT_TRUE(game.screenshot("screenshot_2.bmp"));
    EXPECT_FALSE(dir.exists("screenshot_1.bmp"));
    expectPlayThenQuit(game);
}
