#include "ui/options/option_fields.h"

#include <cwchar>
#include <utility>

namespace tessary {
namespace {

// Longer numbers mean the most that there is.
int NumberOf(const std::wstring& digits) {
    constexpr size_t kMostDigits = 9;
    if (digits.size() > kMostDigits) return 999999999;
    return static_cast<int>(std::wcstol(digits.c_str(), nullptr, 10));
}

}  // namespace

void OptionFields::SetDialog(HWND dialog) {
    dialog_ = dialog;
    buttons_.clear();
    texts_.clear();
    lists_.clear();
    show_.clear();
}

template <typename Field>
Field& OptionFields::Add(std::deque<Field>& fields, int id) {
    Field& field = fields.emplace_back();
    field.Attach(dialog_, id);
    return field;
}

void OptionFields::AddCheck(int id, std::function<bool()> get, std::function<void(bool)> set) {
    Button& box = Add(buttons_, id);
    show_.emplace_back([&box, get = std::move(get)] { box.SetChecked(get()); });
    box.OnClick([this, &box, set = std::move(set)] {
        set(box.IsChecked());
        Changed();
    });
}

void OptionFields::Option(int id, int16_t& value, int16_t choice) {
    Button& option = Add(buttons_, id);
    show_.emplace_back([&option, &value, choice] { option.SetChecked(value == choice); });
    option.OnClick([this, &option, &value, choice] {
        if (!option.IsChecked()) return;
        value = choice;
        Changed();
    });
}

void OptionFields::Text(int id, std::wstring& value) {
    TextBox& text = Add(texts_, id);
    show_.emplace_back([&text, &value] { text.SetText(value); });
    text.OnChange([this, &text, &value] {
        if (showing_) return;
        value = text.Text();
        Changed();
    });
}

void OptionFields::AddNumber(int id, const std::function<int()>& get,
                             std::function<void(int)> set) {
    TextBox& text = Add(texts_, id);
    show_.emplace_back([&text, get] { text.SetText(std::to_wstring(get())); });
    text.OnChange([this, &text, set = std::move(set)] {
        if (showing_) return;
        set(NumberOf(text.Text()));
        Changed();
    });
}

void OptionFields::AddChoice(int id, const std::vector<const wchar_t*>& entries,
                             std::function<int()> get, std::function<void(int)> set) {
    ComboBox& list = Add(lists_, id);
    for (const wchar_t* const entry : entries)
        list.Add(entry);
    show_.emplace_back([&list, get = std::move(get)] {
        list.MarkSelected(std::clamp(get(), 0, list.Count() - 1));
    });
    list.OnSelect([this, &list, set = std::move(set)] {
        set(list.Selected());
        Changed();
    });
}

void OptionFields::Show() {
    showing_ = true;
    for (const auto& show : show_)
        show();
    showing_ = false;
}

void OptionFields::SetEnabled(std::initializer_list<int> ids, bool enabled) const {
    for (const int id : ids)
        EnableWindow(GetDlgItem(dialog_, id), enabled);
}

void OptionFields::Changed() const {
    if (changed_) changed_();
}

}  // namespace tessary
