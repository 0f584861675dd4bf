#include "ui/convert/convert_commands.h"

#include <utility>

#include "res/resource.h"

namespace tessary {

ConvertCommands::ConvertCommands(frmMain& window, const ControlBar& bar,
                                 frmConvertAll::OptionsOpener showOptions)
    : window_(window), bar_(bar), converter_(std::move(showOptions)) {
    window_.Commands().Register(menuFileSaveAll, {.run = [this] { menuFileSaveAll_Click(); },
                                                  .enabled = [this] { return bar_.HasFiles(); }});
    window_.Commands().Register(menuFileConvertAll,
                                {.run = [this] { menuFileConvertAll_Click(); }});
    window_.OnCloseDuringRead([this] { return converter_.RefusesToClose(); });
}

void ConvertCommands::menuFileSaveAll_Click() {
    Convert(bar_.FileList());
}

void ConvertCommands::menuFileConvertAll_Click() {
    Convert({});
}

void ConvertCommands::Convert(const std::vector<std::wstring>& files) {
    converter_.ShowConvertDialog(window_.Handle(), files);
    // The session ended during a run: now nothing keeps the main window open.
    window_.CloseIfAsked();
}

}  // namespace tessary
