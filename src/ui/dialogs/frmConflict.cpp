#include "ui/dialogs/frmConflict.h"

#include <utility>

#include "res/resource.h"

namespace tessary {
namespace {

constexpr wchar_t kExistsText[] = L"保存先に同じ名前のファイルがあります。どうしますか？";
constexpr wchar_t kOfRunText[] =
    L"保存先の同じ名前のファイルは、この変換の対象か、この変換で保存したものです。"
    L"上書きはできません。どうしますか？";

}  // namespace

frmConflict::frmConflict() : Dialog(dialogConflict) {}

ConflictAnswer frmConflict::Ask(HWND owner, const ConflictQuestion& question,
                                const ConflictTexts* texts, bool isLast) {
    question_ = &question;
    texts_ = texts;
    isLast_ = isLast;
    answer_ = ConflictAnswer::kStop;
    isForAll_ = false;
    ShowModal(owner);
    question_ = nullptr;
    texts_ = nullptr;
    return answer_;
}

void frmConflict::Dialog_Load() {
    SetDlgItemTextW(Handle(), conflictQuestion, question_->mayReplace ? kExistsText : kOfRunText);
    if (texts_ != nullptr) {
        for (const auto& [id, text] :
             {std::pair(conflictQuestion, &texts_->question),
              std::pair(conflictSourceLabel, &texts_->source),
              std::pair(conflictTargetLabel, &texts_->target),
              std::pair(conflictFreeName, &texts_->freeName),
              std::pair(conflictReplace, &texts_->replace), std::pair(IDCANCEL, &texts_->stop)}) {
            SetDlgItemTextW(Handle(), id, text->c_str());
        }
    }
    SetDlgItemTextW(Handle(), conflictSource, question_->source.c_str());
    SetDlgItemTextW(Handle(), conflictTarget, question_->target.c_str());
    const struct {
        Button& button;
        int id;
        ConflictAnswer answer;
    } buttons[] = {{conflictFreeName_, conflictFreeName, ConflictAnswer::kFreeName},
                   {conflictReplace_, conflictReplace, ConflictAnswer::kReplace},
                   {conflictSkip_, conflictSkip, ConflictAnswer::kSkip}};
    for (const auto& [button, id, answer] : buttons) {
        button.Attach(Handle(), id);
        button.OnClick([this, answer = answer] { Answer(answer); });
    }
    conflictForAll_.Attach(Handle(), conflictForAll);
    conflictForAll_.SetVisible(!isLast_);
    conflictReplace_.SetEnabled(question_->mayReplace);
    conflictFreeName_.SetFocus();
}

// A session that ends does not wait for an answer.
std::optional<LRESULT> frmConflict::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_ENDSESSION && wParam != FALSE) Close(IDCANCEL);
    return Dialog::OnMessage(message, wParam, lParam);
}

void frmConflict::Answer(ConflictAnswer answer) {
    answer_ = answer;
    isForAll_ = conflictForAll_.IsChecked();
    Close(IDOK);
}

}  // namespace tessary
