// Turning the shown JPEG file as its picture is seen.
#pragma once

#include <optional>
#include <string>

#include "host/host_connection.h"
#include "picture/turn/turn_jpeg_file.h"
#include "ui/main/frmMain.h"

namespace tessary {

class TurnFileCommand {
  public:
    // Registers with the window's menu item; the window must outlive this. `program`: of the
    // process that turns.
    explicit TurnFileCommand(frmMain& window, std::wstring program = HostProgram());
    TurnFileCommand(const TurnFileCommand&) = delete;
    TurnFileCommand& operator=(const TurnFileCommand&) = delete;

    // Replaces the file without loss, and shows it anew. Where edges would be lost the user
    // chooses; he is told why nothing was done.
    void commandTurnFile_Click();

    // Whether a JPEG file is shown, and not as it is stored.
    bool IsPossible() const;

  private:
    // Keeps the window alive meanwhile, and stops for Esc.
    TurnedFile Turn(const JpegFileToTurn& file);
    // What came of the user's choice; nothing: the file is left alone.
    std::optional<TurnedFile> AskToTrim(JpegFileToTurn file, const TurnedFile& trimmed);
    void Tell(const JpegFileToTurn& file, const TurnedFile& turned) const;

    frmMain& window_;
    std::wstring program_;
};

}  // namespace tessary
