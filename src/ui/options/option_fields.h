// The controls of a dialog that each show and edit one value.
#pragma once

#include <windows.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "ui/form/combo_box.h"
#include "ui/form/simple_controls.h"

namespace tessary {

// The values stay the caller's. They change when the user changes the controls, and only then: one
// that no control can show stays as it is until its control is used.
class OptionFields {
  public:
    // `changed` is told after the user has changed a value.
    explicit OptionFields(std::function<void()> changed) : changed_(std::move(changed)) {}

    // To be called in Dialog_Load, before anything else.
    void SetDialog(HWND dialog);

    // A check box: 0 and 1, or false and true.
    template <typename Value>
    void Check(int id, Value& value) {
        AddCheck(
            id, [&value] { return value != Value(); },
            [&value](bool checked) { value = checked ? Value(1) : Value(0); });
    }

    // One of several option buttons: the one for `choice`.
    void Option(int id, int16_t& value, int16_t choice);

    void Text(int id, std::wstring& value);

    // A field that takes digits; beyond the range the nearest value counts.
    template <typename Value>
    void Number(int id, Value& value, int least, int most) {
        AddNumber(
            id, [&value] { return static_cast<int>(value); },
            [&value, least, most](int number) {
                value = static_cast<Value>(std::clamp(number, least, most));
            });
    }

    // A list to choose from: the value is the index of the entry.
    template <typename Value>
    void Choice(int id, const std::vector<const wchar_t*>& entries, Value& value) {
        AddChoice(
            id, entries, [&value] { return static_cast<int>(value); },
            [&value](int index) { value = static_cast<Value>(index); });
    }

    // Puts all values into their controls.
    void Show();

    void SetEnabled(std::initializer_list<int> ids, bool enabled) const;

  private:
    template <typename Field>
    Field& Add(std::deque<Field>& fields, int id);
    void AddCheck(int id, std::function<bool()> get, std::function<void(bool)> set);
    void AddNumber(int id, const std::function<int()>& get, std::function<void(int)> set);
    void AddChoice(int id, const std::vector<const wchar_t*>& entries, std::function<int()> get,
                   std::function<void(int)> set);
    void Changed() const;

    HWND dialog_ = nullptr;
    std::function<void()> changed_;
    std::deque<Button> buttons_;  // deques: controls stay where they are
    std::deque<TextBox> texts_;
    std::deque<ComboBox> lists_;
    std::vector<std::function<void()>> show_;
    bool showing_ = false;
};

}  // namespace tessary
