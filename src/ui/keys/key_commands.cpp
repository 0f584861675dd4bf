#include "ui/keys/key_commands.h"

#include "res/resource.h"

namespace tessary {

std::span<const KeyCommand> KeyCommands() {
    static constexpr KeyCommand kCommands[] = {
        {commandStepForward, L"StepForward", L"次へ"},
        {commandStepBack, L"StepBack", L"前へ"},
        {commandReadOn, L"ReadOn", L"画面を送って次へ"},
        {commandReadBack, L"ReadBack", L"画面を戻して前へ"},
        {commandFirstFile, L"FirstFile", L"先頭へ"},
        {commandLastFile, L"LastFile", L"末尾へ"},
        {menuControl_0, L"Rewind", L"巻き戻し"},
        {menuControl_1, L"ReversePlay", L"逆再生"},
        {menuControl_2, L"Stop", L"停止"},
        {menuControl_3, L"Play", L"再生"},
        {menuControl_4, L"FastForward", L"早送り"},
        {commandPauseMotion, L"PauseMotion", L"再生の一時停止"},
        {commandBook, L"Book", L"見開きで表示する"},
        {commandBookShift, L"BookShift", L"見開きを 1 ページずらす"},
        {commandBookFromRight, L"BookFromRight", L"右から左へ読む"},
        {commandFullScreen, L"FullScreen", L"全画面表示"},
        {commandDisplaySize, L"DisplaySize", L"次の表示サイズ"},
        {commandDisplaySize_0, L"DisplaySize0", L"サイズを調整しない"},
        {commandDisplaySize_5, L"DisplaySize5", L"ウィンドウに合わせる"},
        {commandDisplaySize_6, L"DisplaySize6", L"ウィンドウの幅に合わせる"},
        {commandZoomIn, L"ZoomIn", L"拡大"},
        {commandZoomOut, L"ZoomOut", L"縮小"},
        {commandToggleFit, L"ToggleFit", L"100 % / 全体"},
        {commandTurnRight, L"TurnRight", L"右に 90 度回転"},
        {commandTurnLeft, L"TurnLeft", L"左に 90 度回転"},
        {commandTurnHalf, L"TurnHalf", L"180 度回転"},
        {commandMirror, L"Mirror", L"左右反転"},
        {commandFlip, L"Flip", L"上下反転"},
        {commandTurnFile, L"TurnFile", L"この向きで JPEG に上書き保存"},
        {commandBackdrop, L"Backdrop", L"透明な部分の背景を変える"},
        {commandPauseFrames, L"PauseFrames", L"アニメーションの一時停止"},
        {commandNextFrame, L"NextFrame", L"次のコマ・ページ"},
        {commandFormerFrame, L"FormerFrame", L"前のコマ・ページ"},
        {commandFirstFrame, L"FirstFrame", L"最初のコマ・ページ"},
        {commandShowInfo, L"ShowInfo", L"画像の情報"},
        {menuFileOpen, L"OpenFile", L"ファイルを開く"},
        {menuOpenFolder, L"OpenFolder", L"フォルダを開く"},
        {commandGoOn, L"GoOn", L"前回の続きから"},
        {commandToggleBookmark, L"ToggleBookmark", L"この画像をブックマークする"},
        {menuFileSaveAs, L"SaveAs", L"ファイルに名前を付けて保存"},
        {menuFileSaveAll, L"SaveAll", L"すべて保存"},
        {menuFileConvertAll, L"ConvertAll", L"画像一括コンバート"},
        {menuEditClear, L"Clear", L"表示イメージクリア"},
        {commandDelete, L"Delete", L"削除"},
        {commandDeleteForGood, L"DeleteForGood", L"完全に削除"},
        {commandAddToDeleteList, L"AddToDeleteList", L"削除リストに移す"},
        {commandMarkFile, L"MarkFile", L"選択に加えて次へ"},
        {commandRename, L"Rename", L"名前の変更"},
        {commandMoveTo, L"MoveTo", L"フォルダに移動"},
        {commandCopyTo, L"CopyTo", L"フォルダにコピー"},
        {commandShowInFolder, L"ShowInFolder", L"エクスプローラーで表示"},
        {menuViewControlBar, L"ControlBar", L"コントロールバーの表示"},
        {menuControl_5, L"Fold", L"コントロールバーの折りたたみ"},
        {commandOtherWindow, L"OtherWindow", L"コントロールバーとの行き来"},
        {menuOptionSetup, L"Options", L"環境設定"},
        {menuFileExit, L"Exit", L"終了"},
    };
    return kCommands;
}

}  // namespace tessary
