/// The pages of a PDF file as the renderer finds them, before anything is drawn.
#pragma once

#include "host/readers/pdf/Ghostscript.h"
#include "host/readers/pdf/PDFOptions.h"
#include "host/readers/pdf/PDFPlacement.h"
#include <memory>
#include <vector>

/// Counts and measures the pages of a file, beside whatever else is being done.
class PDFPageCount {
public:
    /// Begins. Throws HostError when there is no renderer, or the file cannot be opened.
    PDFPageCount(std::string path, const PDFOptions &options);
    ~PDFPageCount();
    PDFPageCount(const PDFPageCount &) = delete;
    PDFPageCount &operator=(const PDFPageCount &) = delete;

    /// Waits for the end. At least one page. To be called once. Throws HostError (Input) that names
    /// the file when it cannot be read or a password is missing, or when it takes minutes.
    [[nodiscard]] std::vector<PDFPage> Finish();

private:
    class List;

    std::string mPath;
    bool mHasPassword;
    std::unique_ptr<List> mList;
    Ghostscript mRenderer;
};

/// The numbers, from 1, of the pages whose transparency is blended in RGB because they say so: all
/// of their inks become light, and are separated anew. None when that cannot be told.
[[nodiscard]] std::vector<int> ReadPagesBlendedInRGB(const std::string &path,
                                                     const PDFOptions &options,
                                                     const std::vector<PDFPage> &pages);
