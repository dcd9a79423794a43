#include "host/command/Report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

std::string Dump(const json &value) {
    return value.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

std::string Count(int number, const char *what) {
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

std::string Shown(const char *format, double a, double b) {
    char text[64];
    (void)snprintf(text, sizeof text, format, a, b);
    return text;
}

/// To a tenth, and none where there is none.
std::string TwoSides(double width, double height) {
    return Shown("%.10g x %.10g", std::round(width * 10) / 10, std::round(height * 10) / 10);
}

std::string Megabytes(uint64_t bytes) {
    char text[32];
    (void)snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / 1e6);
    return text;
}

double Rounded(double value, double steps) {
    return std::round(value * steps) / steps;
}

/// The quarter turn counterclockwise, in degrees, with which a page lies in front of the reader.
int Rotation(const JobPlan &plan, const PagePlacement &place) {
    return !place.turned ? 0 : plan.turned ? 270 : 90;
}

json PlacementAsJSON(const JobPlan &plan, const PageReference &page) {
    const PagePlacement &place = page.placement;
    const auto mm = [](double points) { return Rounded(points / 72 * 25.4, 100); };
    const Edges &cut = place.cut;
    return {{"file", page.file->Path()},
            {"page", page.page + 1},
            {"scale_percent", place.ofOwnSize ? json(Rounded(place.scale * 100, 100)) : json()},
            {"rotation", Rotation(plan, place)},
            {"left_mm", mm(place.left)},
            {"top_mm", mm(place.top)},
            {"width_mm", mm(place.width)},
            {"height_mm", mm(place.height)},
            {"cut_mm",
             {{"left", mm(cut.left)},
              {"top", mm(cut.top)},
              {"right", mm(cut.right)},
              {"bottom", mm(cut.bottom)}}}};
}

/// Pages that are not in their own size or not upright; empty when all are.
std::string PlacementText(const JobPlan &plan) {
    double least = INFINITY;
    double most = 0;
    size_t turned = 0;
    for (const PageReference &page : plan.pages) {
        turned += page.placement.turned ? 1 : 0;
        if (!page.placement.ofOwnSize) continue;
        least = std::min(least, page.placement.scale * 100);
        most = std::max(most, page.placement.scale * 100);
    }
    std::string text;
    if (most > 0 && (std::abs(least - 100) >= 0.05 || std::abs(most - 100) >= 0.05))
        text = std::abs(most - least) < 0.05 ? Shown(", at %.1f %%", most, 0)
                                             : Shown(", at %.1f to %.1f %%", least, most);
    if (turned == 0) return text;
    return text + ", " +
           (turned < plan.pages.size() ? Count(static_cast<int>(turned), "page") + " turned"
                                       : "turned");
}

/// Pages, page and colours, as far as they are the same for every file.
std::string Details(const JobPlan &plan) {
    std::string text = Count(static_cast<int>(plan.pages.size()), "page");
    if (plan.copies > 1) text += ", " + Count(plan.copies, "copie");
    text += ", " + (plan.media.custom ? std::string() : plan.media.name + " ");
    text += TwoSides(plan.media.width, plan.media.height) + " points at ";
    text += TwoSides(plan.grid.dpiX, plan.grid.dpiY) + " dpi";
    text += std::string(", ") + NameOfColourSpace(plan.colourSpace);
    if (plan.Separates()) text += " by " + (plan.separation.empty() ? "Standard" : plan.separation);
    return text + PlacementText(plan);
}

json JobAsJSON(const JobPlan &plan) {
    json job;
    job["title"] = plan.title;
    job["format"] = plan.eps ? "eps" : "ps";
    job["colour_space"] = NameOfColourSpace(plan.colourSpace);
    if (plan.colourSpace == kZELColourSpaceCMYK)
        job["separation"] = !plan.Separates()         ? json(nullptr)
                            : plan.separation.empty() ? json("Standard")
                                                      : json(plan.separation);
    job["pages"] = plan.pages.size();
    job["copies"] = plan.copies;
    job["media"] = {{"name", plan.media.custom ? json(nullptr) : json(plan.media.name)},
                    {"width_pt", plan.media.width},
                    {"height_pt", plan.media.height},
                    {"rotated", plan.rotated}};
    job["resolution"] = {
        {"name", plan.resolution.name}, {"x_dpi", plan.grid.dpiX}, {"y_dpi", plan.grid.dpiY}};
    job["width_pixels"] = plan.grid.width;
    job["height_pixels"] = plan.grid.height;
    job["placements"] = json::array();
    for (const PageReference &page : plan.pages)
        job["placements"].push_back(PlacementAsJSON(plan, page));
    return job;
}

/// Five characters for four samples, in lines of 80.
uint64_t ExpectedBytes(const JobPlan &plan) {
    const uint64_t characters = (plan.PageBytes() + 3) / 4 * 5;
    return static_cast<uint64_t>(plan.TotalPages()) * (characters + characters / 80);
}

} // namespace

std::string ReportAsText(const JobPlan &plan, const JobResult &result) {
    if (result.queued) return "handed to the print queue (" + Details(plan) + ")\n";
    if (result.files.size() == 1)
        return "wrote " + result.files[0].path + " (" + Details(plan) + ", " +
               Megabytes(result.files[0].bytes) + ")\n";
    std::string text;
    for (const FinishedFile &file : result.files)
        text += "wrote " + file.path + " (" + Megabytes(file.bytes) + ")\n";
    return text + "in all " + Details(plan) + "\n";
}

std::string ReportAsJSON(const JobPlan &plan, const JobResult &result) {
    json job = JobAsJSON(plan);
    job["queued"] = result.queued;
    job["files"] = json::array();
    for (const FinishedFile &file : result.files)
        job["files"].push_back({{"path", file.path}, {"bytes", file.bytes}});
    return Dump(job);
}

std::string DryRunAsText(const JobPlan &plan) {
    return "would print " + Details(plan) + ", " + std::to_string(plan.grid.width) + " x " +
           std::to_string(plan.grid.height) + " pixels a page, about " +
           Megabytes(ExpectedBytes(plan)) + (plan.queue ? ", to the print queue" : ", in ") +
           (plan.queue            ? ""
            : plan.folder.empty() ? "a folder still to be chosen"
                                  : plan.folder) +
           "\n";
}

std::string DryRunAsJSON(const JobPlan &plan) {
    json job = JobAsJSON(plan);
    job["dry_run"] = true;
    job["queue"] = plan.queue;
    job["folder"] = plan.folder.empty() ? json(nullptr) : json(plan.folder);
    job["expected_bytes"] = ExpectedBytes(plan);
    return Dump(job);
}

std::string ErrorAsJSON(const HostError &error, const std::string &file) {
    json failure = {{"error",
                     {{"status", static_cast<int>(error.Status())},
                      {"message", error.what()},
                      {"about", error.About()}}}};
    if (!file.empty()) failure["file"] = file;
    return Dump(failure);
}
