#include "host/readers/images/JPEGCheck.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <vector>

#include <jerror.h>
#include <jpeglib.h>

namespace {

/// Some cameras fill up in front of the end mark; nobody looks at these bytes.
constexpr int kMostFill = 2;

struct CloseFile {
    void operator()(FILE *file) const { (void)fclose(file); }
};

/// libjpeg's state. Its functions leave by longjmp, so whoever calls them owns nothing.
struct Decoder {
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    jmp_buf failed;
    Damage *damage;
    bool hasAllRows;
};

Decoder &DecoderOf(j_common_ptr info) {
    return *static_cast<Decoder *>(info->client_data);
}

void Note(j_common_ptr info, bool isInvented) {
    Damage &damage = *DecoderOf(info).damage;
    if (!damage.what.empty() && damage.isInvented >= isInvented) return;
    char text[JMSG_LENGTH_MAX];
    info->err->format_message(info, text);
    damage = {text, isInvented};
}

void OnWarning(j_common_ptr info, int level) {
    if (level >= 0 || info->err->msg_code == JWRN_JFIF_MAJOR) return;
    const int *values = info->err->msg_parm.i;
    const bool isFill = info->err->msg_code == JWRN_EXTRANEOUS_DATA && values[1] == JPEG_EOI &&
                        values[0] <= kMostFill;
    const bool lacksOnlyEndMark =
        info->err->msg_code == JWRN_JPEG_EOF && DecoderOf(info).hasAllRows;
    Note(info, !isFill && !lacksOnlyEndMark);
}

[[noreturn]] void OnError(j_common_ptr info) {
    Note(info, true);
    longjmp(DecoderOf(info).failed, 1);
}

void DropMessage(j_common_ptr) {}

/// The smallest picture that takes all of the file to make.
void ChooseSmallest(jpeg_decompress_struct &info) {
    info.scale_num = 1;
    info.scale_denom = 8;
    info.dct_method = JDCT_IFAST;
    info.do_fancy_upsampling = FALSE;
    info.out_color_space = info.jpeg_color_space;
}

/// Whether parts of a picture that comes in several passes have not come at all.
bool LacksPasses(const jpeg_decompress_struct &info) {
    if (!info.progressive_mode || !info.coef_bits) return false;
    for (int component = 0; component < info.num_components; ++component)
        for (int i = 0; i < DCTSIZE2; ++i)
            if (info.coef_bits[component][i] != 0) return true;
    return false;
}

void Decode(Decoder &decoder, FILE *file, std::vector<JSAMPLE> &row,
            const std::atomic<bool> &stopped) {
    jpeg_decompress_struct &info = decoder.info;
    if (setjmp(decoder.failed) != 0) return;
    jpeg_create_decompress(&info);
    info.client_data = &decoder;
    jpeg_stdio_src(&info, file);
    (void)jpeg_read_header(&info, TRUE);
    ChooseSmallest(info);
    (void)jpeg_start_decompress(&info);
    row.resize(static_cast<size_t>(info.output_width) *
               static_cast<size_t>(std::max(info.output_components, info.num_components)));
    JSAMPROW rows[] = {row.data()};
    while (info.output_scanline < info.output_height && !stopped)
        (void)jpeg_read_scanlines(&info, rows, 1);
    if (stopped) return;
    decoder.hasAllRows = true;
    if (LacksPasses(info) && decoder.damage->what.empty())
        *decoder.damage = {"its last passes are missing: it is less sharp than it was", false};
    (void)jpeg_finish_decompress(&info);
}

} // namespace

Damage CheckJPEG(const std::string &path, const std::atomic<bool> &stopped) {
    Damage damage;
    const std::unique_ptr<FILE, CloseFile> file(fopen(path.c_str(), "rbe"));
    if (!file) return {"it cannot be opened again", true};
    std::vector<JSAMPLE> row;
    Decoder decoder = {};
    decoder.damage = &damage;
    decoder.info.err = jpeg_std_error(&decoder.errors);
    decoder.info.client_data = &decoder;
    decoder.errors.emit_message = OnWarning;
    decoder.errors.error_exit = OnError;
    decoder.errors.output_message = DropMessage;
    Decode(decoder, file.get(), row, stopped);
    jpeg_destroy_decompress(&decoder.info);
    return stopped ? Damage() : damage;
}
