/// What a job of the print system asks for, in zelprint's words.
#pragma once

#include <string>
#include <vector>

/// The arguments and the environment that the scheduler gives to a backend.
struct QueueJob {
    std::string number, title, options;
    std::string folder;     ///< the hot folder
    std::string ppd;        ///< path of the queue's PPD file
    int copies = 1;         ///< that nobody has made yet
    bool isPicture = false; ///< a picture as it was sent, not a PDF that filters have laid out
};

/// The folder that a device URI names ("zelprint:/hot/folder", percent-encoded); empty when it
/// names none.
[[nodiscard]] std::string HotFolderOfURI(const std::string &uri);

/// The options of zelprint for the job, without the file to print. Empty when the PPD file cannot
/// be read.
[[nodiscard]] std::vector<std::string> OptionsOf(const QueueJob &job);
