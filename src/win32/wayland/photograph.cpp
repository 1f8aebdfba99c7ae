// The desktop: what the output of the show shows. The compositor copies it; where it does so for no ordinary
// program, services on the session bus are asked.
#include "win32/wayland/output_copy.h"
#include "win32/wayland/screenshot_services.h"
#include "win32/wayland/wayland.h"

#include <algorithm>
#include <string>

namespace wayland {

namespace {

bool IsStillThere(const Output& output) {
    return std::ranges::any_of(OwnOutputs(), [&](const Output* own) { return own->id == output.id; });
}

// By the newer of two protocols; by the older one where the newer is not there, or fails.
std::string CopyOutput(const Output& output, int width, int height, Photograph* picture) {
    std::string problem;
    if (Offers().imageCopies != nullptr && Offers().imageSources != nullptr) {
        problem = CopyByImageCapture(output, width, height, picture);
        if (problem.empty())
            return "";
        if (!IsStillThere(output))
            return problem;
        problem += "; ";
    }
    const std::string older = CopyByScreencopy(output, width, height, picture);
    return older.empty() ? "" : problem + older;
}

// KWin knows outputs by their names. The problems are those of all that was tried.
bool AskServices(const Output& output, Photograph* picture, std::string* problems) {
    std::string problem;
    if (!output.name.empty() && PhotographByKwin(output.name, picture, &problem))
        return true;
    if (!output.name.empty())
        *problems += "; " + problem;
    if (PhotographByPortal(WholeDesktop(), output.Logical(), output.Width(), output.Height(), picture,
                           &problem))
        return true;
    *problems += "; " + problem;
    return false;
}

} // namespace

// A part of the desktop has nobody in front of it who could answer a service's question, and what it lies on
// may be a lock program's.
bool PhotographDesktop(int width, int height, Photograph* picture, std::string* problem) {
    *picture = {};
    const std::vector<const Output*> own =
        Connection() != nullptr ? OwnOutputs() : std::vector<const Output*>();
    *problem = "there is no output (desktop capture)";
    if (own.empty())
        return false;
    const Output output = *own.front(); // it may go meanwhile
    *problem = CopyOutput(output, width, height, picture);
    if (problem->empty() || (!NamedLayer() && AskServices(output, picture, problem)))
        return true;
    *picture = {};
    *problem += " (desktop capture)";
    return false;
}

} // namespace wayland
