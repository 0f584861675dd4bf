#include "app/base/error.h"

#include "app/base/message_box.h"
#include "app/base/text.h"

namespace tessary {
namespace {

// Of this thread; null: none.
thread_local const std::function<void(const RaisedError&)>* receiver = nullptr;

}  // namespace

RaisedError CurrentError() {
    try {
        throw;
    } catch (const RaisedError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return RaisedError(kErrorOutOfMemory, L"メモリが不足しています。");
    } catch (const std::exception& error) {
        return RaisedError(kErrorInternal, FromAnsi(error.what()));
    } catch (...) {
        return RaisedError(kErrorInternal, L"内部エラーです。");
    }
}

void ReportUnexpectedError(uint32_t errorNumber, std::wstring_view errorDescription,
                           std::wstring_view procedureLabel) {
    if (receiver != nullptr) {
        (*receiver)(RaisedError(errorNumber, std::wstring(errorDescription)));
        return;
    }
    std::wstring message = L"モジュール ";
    message.append(procedureLabel);
    message += L" で予期されていないエラーが発生しました。\r\nErrorNo.";
    // Signed: numbers of plug-in object errors are negative, as users know them from error lists.
    message += std::to_wstring(static_cast<int32_t>(errorNumber));
    message += L" ";
    message.append(errorDescription);
    ShowMessageBox(message);
}

DivertedErrors::DivertedErrors(std::function<void(const RaisedError& error)> take)
    : take_(std::move(take)) {
    receiver = &take_;
}

DivertedErrors::~DivertedErrors() {
    receiver = nullptr;
}

}  // namespace tessary
