#include "ui/options/key_page.h"

#include <array>
#include <string>
#include <utility>

#include "res/resource.h"
#include "ui/keys/key_commands.h"
#include "ui/keys/key_map.h"

namespace tessary {
namespace {

constexpr std::array<ListView::Column, 2> kColumns{
    {{.caption = L"操作", .width = 210}, {.caption = L"キー", .width = 180, .fills = true}}};

std::wstring CaptionOf(int id) {
    for (const KeyCommand& command : KeyCommands()) {
        if (command.id == id) return command.caption;
    }
    return {};
}

}  // namespace

void KeyPage::AttachControls() {
    list_.Attach(Dialog(), listKeys);
    list_.SetColumns(kColumns);
    list_.OnSelect([this] { ShowState(); });
    list_.OnDoubleClick([this] { newKey_.SetFocus(); });
    newKey_.Attach(Dialog(), textNewKey);
    newKey_.OnPressed([this] { ShowState(); });
    use_.Attach(Dialog(), labelKeyUse);
    assign_.Attach(Dialog(), cmdAssignKey);
    assign_.OnClick([this] { cmdAssignKey_Click(); });
    drop_.Attach(Dialog(), cmdDropKeys);
    drop_.OnClick([this] {
        Options().keys[SelectedCommand()].clear();
        KeysChanged();
    });
    usual_.Attach(Dialog(), cmdUsualKeys);
    usual_.OnClick([this] {
        const int command = SelectedCommand();
        const std::vector<KeyStroke> strokes = UsualKeys().at(command);
        Options().keys[command].clear();
        for (size_t i = strokes.size(); i > 0; --i)
            Assign(Options().keys, command, strokes[i - 1]);
        KeysChanged();
    });
    allUsual_.Attach(Dialog(), cmdAllUsualKeys);
    allUsual_.OnClick([this] {
        Options().keys = UsualKeys();
        KeysChanged();
    });
}

void KeyPage::ShowValues() {
    const int selected = list_.Selected();
    std::vector<ListView::Row> rows;
    for (const KeyCommand& command : KeyCommands())
        rows.push_back({command.caption, NamesOf(Options().keys[command.id])});
    list_.SetRows(std::move(rows));
    list_.Select(selected < 0 ? 0 : selected);
}

int KeyPage::SelectedCommand() const {
    const int selected = list_.Selected();
    return selected < 0 ? 0 : KeyCommands()[static_cast<size_t>(selected)].id;
}

void KeyPage::ShowState() {
    const int command = SelectedCommand();
    const bool isOne = command != 0;
    const auto& keys = Options().keys;
    const bool hasKeys = isOne && !keys.at(command).empty();
    assign_.SetEnabled(isOne && MayBeChosen(newKey_.Stroke()) &&
                       CommandOf(keys, newKey_.Stroke()) != command);
    drop_.SetEnabled(hasKeys);
    usual_.SetEnabled(isOne && keys.at(command) != UsualKeys().at(command));
    allUsual_.SetEnabled(keys != UsualKeys());
    ShowUse();
}

void KeyPage::ShowUse() {
    const KeyStroke& stroke = newKey_.Stroke();
    std::wstring text;
    if (stroke.key != 0 && !MayBeChosen(stroke)) {
        text = NameOf(stroke) + L" は、ほかの働きがあるため割り当てられません。";
    } else if (stroke.key != 0) {
        const std::optional<int> other = CommandOf(Options().keys, stroke);
        if (other == SelectedCommand()) {
            text = NameOf(stroke) + L" は、この操作のキーです。";
        } else if (other) {
            text = NameOf(stroke) + L" は「" + CaptionOf(*other) +
                   L"」のキーです。割り当てると、そちらから外れます。";
        }
    }
    if (use_.Text() != text) use_.SetText(text);
}

void KeyPage::cmdAssignKey_Click() {
    Assign(Options().keys, SelectedCommand(), newKey_.Stroke());
    newKey_.Clear();
    newKey_.SetFocus();
    KeysChanged();
}

void KeyPage::KeysChanged() {
    ShowValues();
    Changed();
}

}  // namespace tessary
