#include "tests/host/HostRunner.h"

#include "host/readers/images/VipsSupport.h"
#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Spawn {
    std::vector<std::string> command;
    std::vector<std::string> environment;
    uint64_t fileSizeLimit = 0;
    std::string out, err; ///< files
    std::string folder;
};

pid_t StartProcess(const Spawn &spawn) {
    const pid_t child = fork();
    if (child != 0) return child;
    const auto redirect = [](const std::string &path, int fd) {
        const int file =
            open(path.empty() ? "/dev/null" : path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        (void)dup2(file, fd);
    };
    redirect(spawn.out, STDOUT_FILENO);
    redirect(spawn.err, STDERR_FILENO);
    if (!spawn.folder.empty() && chdir(spawn.folder.c_str()) != 0) _exit(126);
    for (const std::string &entry : spawn.environment)
        (void)putenv(strdup(entry.c_str()));
    if (spawn.fileSizeLimit > 0) {
        const rlimit limit = {spawn.fileSizeLimit, spawn.fileSizeLimit};
        (void)setrlimit(RLIMIT_FSIZE, &limit);
    }
    std::vector<char *> arguments;
    for (const std::string &argument : spawn.command)
        arguments.push_back(const_cast<char *>(argument.c_str()));
    arguments.push_back(nullptr);
    (void)execvp(arguments[0], arguments.data());
    _exit(127);
}

int WaitFor(pid_t child) {
    int status = 0;
    if (waitpid(child, &status, 0) != child) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

VipsImagePtr AsImage(const Picture &picture, bool cmyk) {
    VipsImagePtr image(vips_image_new_from_memory_copy(
        picture.samples.data(), picture.samples.size(), picture.width, picture.height,
        picture.bands, VIPS_FORMAT_UCHAR));
    VipsImage *copy = nullptr;
    const VipsInterpretation interpretation = cmyk                ? VIPS_INTERPRETATION_CMYK
                                              : picture.bands < 3 ? VIPS_INTERPRETATION_B_W
                                                                  : VIPS_INTERPRETATION_sRGB;
    EXPECT_EQ(vips_copy(image.get(), &copy, "interpretation", interpretation, nullptr), 0);
    return VipsImagePtr(copy);
}

Picture FromImage(VipsImage *image) {
    size_t size = 0;
    void *memory = vips_image_write_to_memory(image, &size);
    Picture picture{image->Xsize, image->Ysize, image->Bands, {}};
    const auto *bytes = static_cast<const uint8_t *>(memory);
    picture.samples.assign(bytes, bytes + size);
    g_free(memory);
    return picture;
}

} // namespace

std::string RunResult::Complaint() const {
    std::istringstream lines(err);
    std::string complaint;
    for (std::string line; std::getline(lines, line);)
        if (line.rfind("zelprint: ", 0) == 0) {
            EXPECT_EQ(complaint, "") << "more than one line: " << err;
            complaint = line;
        }
    return complaint;
}

Workplace::Workplace() {
    StartVips();
    std::string name = (fs::temp_directory_path() / "zelprint-test-XXXXXX").string();
    mRoot = mkdtemp(name.data());
    fs::create_directory(mRoot / "hot");
}

Workplace::~Workplace() {
    std::error_code ignored;
    fs::remove_all(mRoot, ignored);
}

std::vector<std::string> Workplace::HotFiles() const {
    std::vector<std::string> names;
    for (const auto &entry : fs::directory_iterator(mRoot / "hot"))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> Workplace::Leftovers() const {
    std::vector<std::string> names;
    for (const fs::path &folder : {mRoot, mRoot / "hot"})
        for (const auto &entry : fs::directory_iterator(folder))
            if (entry.path().filename().string().rfind(".zelprint", 0) == 0)
                names.push_back(entry.path());
    return names;
}

RunResult Workplace::Run(const std::vector<std::string> &arguments,
                         const std::vector<std::string> &environment,
                         uint64_t fileSizeLimit) const {
    Spawn spawn{{ZELPRINT_PROGRAM}, environment,  fileSizeLimit,
                Path(".out"),       Path(".err"), mRoot.string()};
    spawn.command.insert(spawn.command.end(), arguments.begin(), arguments.end());
    RunResult result;
    result.status = WaitFor(StartProcess(spawn));
    result.out = ReadFile(spawn.out);
    result.err = ReadFile(spawn.err);
    return result;
}

RunResult Workplace::PrintRGB(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--hot-folder", Hot(), "--colour-space", "rgb"});
    return Run(arguments);
}

pid_t Workplace::Start(const std::vector<std::string> &arguments) const {
    Spawn spawn{{ZELPRINT_PROGRAM}, {}, 0, "", "", mRoot.string()};
    spawn.command.insert(spawn.command.end(), arguments.begin(), arguments.end());
    return StartProcess(spawn);
}

Picture TestPicture(int width, int height) {
    Picture picture{width, height, 3, {}};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool corner = x < width / 4 && y < height / 4;
            picture.samples.push_back(static_cast<uint8_t>(230 * x / width));
            picture.samples.push_back(static_cast<uint8_t>(230 * y / height));
            picture.samples.push_back(corner ? 220 : 20);
        }
    return picture;
}

Picture PlainPicture(int width, int height, const std::vector<uint8_t> &colour) {
    Picture picture{width, height, static_cast<int>(colour.size()), {}};
    for (int i = 0; i < width * height; ++i)
        picture.samples.insert(picture.samples.end(), colour.begin(), colour.end());
    return picture;
}

void SavePicture(const Picture &picture, const std::string &path, const SaveOptions &options) {
    VipsImagePtr image = AsImage(picture, options.cmyk);
    if (options.dpi > 0) {
        VipsImage *copy = nullptr;
        ASSERT_EQ(vips_copy(image.get(), &copy, "xres", options.dpi / 25.4, "yres",
                            options.dpi / 25.4, nullptr),
                  0);
        image.reset(copy);
    }
    if (options.orientation != 1)
        vips_image_set_int(image.get(), VIPS_META_ORIENTATION, options.orientation);
    if (!options.profile.empty())
        vips_image_set_blob_copy(image.get(), VIPS_META_ICC_NAME, options.profile.data(),
                                 options.profile.size());
    ASSERT_EQ(vips_image_write_to_file(image.get(), path.c_str(), nullptr), 0)
        << vips_error_buffer();
}

void SavePages(const std::vector<Picture> &pages, const std::string &path) {
    Picture tall = pages[0];
    for (size_t i = 1; i < pages.size(); ++i) {
        tall.height += pages[i].height;
        tall.samples.insert(tall.samples.end(), pages[i].samples.begin(), pages[i].samples.end());
    }
    const VipsImagePtr image = AsImage(tall, false);
    vips_image_set_int(image.get(), VIPS_META_PAGE_HEIGHT, pages[0].height);
    ASSERT_EQ(vips_image_write_to_file(image.get(), path.c_str(), nullptr), 0)
        << vips_error_buffer();
}

Picture Render(const std::string &path, int dpi, int page, const char *device) {
    const std::string out = path + ".rendered";
    const std::string number = std::to_string(page);
    const bool eps = path.size() > 4 && path.substr(path.size() - 4) == ".eps";
    Spawn spawn{{"gs", "-q", "-dBATCH", "-dNOPAUSE", "-dSAFER", std::string("-sDEVICE=") + device,
                 "-r" + std::to_string(dpi), "-sPageList=" + number, "-o", out},
                {},
                0,
                path + ".gs",
                path + ".gserr",
                ""};
    if (eps) {
        spawn.command.erase(spawn.command.begin() + 7);
        spawn.command.insert(spawn.command.begin() + 1, "-dEPSCrop");
    }
    spawn.command.push_back(path);
    EXPECT_EQ(WaitFor(StartProcess(spawn)), 0);
    EXPECT_EQ(ReadFile(spawn.out) + ReadFile(spawn.err), "") << path;
    const VipsImagePtr image(
        vips_image_new_from_file(out.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, nullptr));
    const Picture picture = image ? FromImage(image.get()) : Picture();
    EXPECT_TRUE(image) << path;
    for (const std::string &file : {out, spawn.out, spawn.err})
        fs::remove(file);
    return picture;
}

int CountPages(const std::string &path) {
    Spawn spawn{{"gs", "-q", "-dBATCH", "-dNOPAUSE", "-dSAFER", "-sDEVICE=bbox", path},
                {},
                0,
                path + ".gs",
                path + ".gserr",
                ""};
    EXPECT_EQ(WaitFor(StartProcess(spawn)), 0);
    const std::string text = ReadFile(spawn.err);
    int count = 0;
    for (size_t at = 0; (at = text.find("%%BoundingBox", at)) != std::string::npos; ++at)
        ++count;
    fs::remove(spawn.out);
    fs::remove(spawn.err);
    return count;
}

std::string ReadFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const std::string &path, const std::string &bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadWithoutDate(const std::string &path) {
    std::string text = ReadFile(path);
    const size_t start = text.find("%%CreationDate:");
    if (start != std::string::npos) text.erase(start, text.find('\n', start) - start);
    return text;
}

double MeanDifference(const Picture &a, const Picture &b) {
    EXPECT_EQ(a.samples.size(), b.samples.size());
    if (a.samples.size() != b.samples.size() || a.samples.empty()) return 255;
    double sum = 0;
    for (size_t i = 0; i < a.samples.size(); ++i)
        sum += std::abs(a.samples[i] - b.samples[i]);
    return sum / static_cast<double>(a.samples.size());
}

Picture Trimmed(const Picture &picture) {
    const VipsImagePtr image = AsImage(picture, false);
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    VipsArrayDouble *white = vips_array_double_newv(1, 255.0);
    EXPECT_EQ(vips_find_trim(image.get(), &left, &top, &width, &height, "background", white,
                             "threshold", 8.0, nullptr),
              0);
    vips_area_unref(VIPS_AREA(white));
    VipsImage *part = nullptr;
    if (width < 1 || vips_extract_area(image.get(), &part, left, top, width, height, nullptr) != 0)
        return {};
    return FromImage(VipsImagePtr(part).get());
}

Picture Resampled(const Picture &picture, int width, int height) {
    const VipsImagePtr image = AsImage(picture, false);
    VipsImage *out = nullptr;
    EXPECT_EQ(vips_thumbnail_image(image.get(), &out, width, "height", height, "size",
                                   VIPS_SIZE_FORCE, nullptr),
              0);
    return FromImage(VipsImagePtr(out).get());
}
