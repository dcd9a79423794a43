/// What Ghostscript says while it draws, and what that means for the page.
#pragma once

#include <string>

class PDFMessages {
public:
    /// Takes a line of messages.
    void Add(const std::string &line);
    void Clear() { *this = {}; }

    /// What was not drawn, in the renderer's words; empty when all was.
    [[nodiscard]] const std::string &Lost() const { return mLost; }
    /// What was mended without loss; empty when nothing was.
    [[nodiscard]] const std::string &Repaired() const { return mRepaired; }
    /// The last line that says anything, for an end without an explanation.
    [[nodiscard]] const std::string &Last() const { return mLast; }
    [[nodiscard]] bool NeedsPassword() const { return mNeedsPassword; }
    [[nodiscard]] bool IsWrongPassword() const { return mWrongPassword; }

private:
    std::string mLost, mRepaired, mLast;
    bool mNeedsPassword = false, mWrongPassword = false;
};
