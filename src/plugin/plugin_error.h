// What a plug-in object raises: numbers, messages and the two exception types.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "app/base/error.h"

namespace tessary {

// Numbers of the errors that plug-in objects raise.
constexpr uint32_t kErrorInvalidPlugin = 0x8003FFFF;
constexpr uint32_t kErrorUnexpectedInMember = 0x80040001;
constexpr uint32_t kErrorPluginNotAvailable = 0x80040010;
constexpr uint32_t kErrorNoPluginSet = 0x80040011;
constexpr uint32_t kErrorCallUnderWay = 0x80040012;
constexpr uint32_t kErrorPluginsStopped = 0x80040013;
constexpr uint32_t kErrorGivenUp = 0x80040014;  // somebody did not want to wait for the plug-in
constexpr uint32_t kErrorNothingBound = 0x80040020;
constexpr uint32_t kErrorNotSupported = 0x80040022;
constexpr uint32_t kErrorDecodingFailed = 0x80040023;
constexpr uint32_t kErrorDrawingFailed = 0x80040024;
constexpr uint32_t kErrorSavingFailed = 0x80040025;
constexpr uint32_t kErrorWrongPluginKind = 0x80040030;
constexpr uint32_t kErrorInvalidArgument = 0x80040034;
constexpr uint32_t kErrorInvalidMemberIndex = 0x80040035;
constexpr uint32_t kErrorInvalidMemory = 0x80040040;
constexpr uint32_t kErrorNoFileName = 0x80040081;

// Their descriptions.
inline constexpr wchar_t kInvalidPluginText[] =
    L"登録されようとしたSPIファイルは有効な形式ではありません";
inline constexpr wchar_t kUnexpectedInMemberText[] = L"予期されていないエラーが発生しました";
inline constexpr wchar_t kPluginNotAvailableText[] = L"SPIファイルがクラスに登録されていません";
inline constexpr wchar_t kNoPluginSetText[] = L"SPIファイルをロードできません";
inline constexpr wchar_t kCallUnderWayText[] = L"プラグインの処理中です";
inline constexpr wchar_t kNothingBoundText[] = L"画像(圧縮)ファイルがクラスに登録されていません";
inline constexpr wchar_t kNotSupportedText[] = L"サポートされていないファイル形式です";
inline constexpr wchar_t kDecodingFailedText[] = L"画像の展開に失敗しました";
inline constexpr wchar_t kExtractingFailedText[] = L"圧縮ファイルの展開に失敗しました";
inline constexpr wchar_t kUnsafeMemberText[] =
    L"圧縮ファイル内のファイル名が不正なため、展開できません";
inline constexpr wchar_t kDrawingFailedText[] = L"画像イメージを表示する際にエラーが発生しました";
inline constexpr wchar_t kSavingFailedText[] = L"ファイルの保存に失敗しました";
inline constexpr wchar_t kNoTemporaryFolderText[] = L"一時フォルダを作成できません";
inline constexpr wchar_t kMethodNotOfferedText[] =
    L"このメソッドは現在登録されているSPIファイルではサポートされません";
inline constexpr wchar_t kPropertyNotOfferedText[] =
    L"このプロパティーは現在登録されているSPIファイルではサポートされません";
inline constexpr wchar_t kInvalidArgumentText[] =
    L"クラスのメソッド、プロパティーが不正なパラメータで呼び出されました";
inline constexpr wchar_t kInvalidMemberIndexText[] = L"指定されたインデックス番号は無効です";
inline constexpr wchar_t kInvalidMemoryText[] = L"メモリーハンドルが不正です";
inline constexpr wchar_t kNoFileNameText[] =
    L"パラメータにファイル名が指定されていません。ファイルをクラスから削除します";

// An error of a plug-in object; everything else that happens inside one of its members is turned
// into kErrorUnexpectedInMember.
class PluginError : public RaisedError {
  public:
    using RaisedError::RaisedError;
};

// A file that is no plug-in that can be used.
class RefusedPluginError : public PluginError {
  public:
    RefusedPluginError(bool isLoadable, uint32_t loadError)
        : PluginError(kErrorInvalidPlugin, kInvalidPluginText),
          isLoadable_(isLoadable),
          loadError_(loadError) {}

    // Whether the file could be loaded at all, and only lacks the functions of a plug-in.
    bool IsLoadable() const { return isLoadable_; }
    // The system's reason why it could not; 0 when there is none.
    uint32_t LoadError() const { return loadError_; }

  private:
    bool isLoadable_;
    uint32_t loadError_;
};

// A file or block whose members an archive plug-in cannot list: no archive of its, or a damaged
// one.
class UnlistedArchiveError : public PluginError {
  public:
    explicit UnlistedArchiveError(int32_t result)
        : PluginError(kErrorNotSupported, kNotSupportedText), result_(result) {}

    // The plug-in's answer; 0 when it gave no list all the same.
    int32_t Result() const { return result_; }

  private:
    int32_t result_;
};

// A picture that could not be decoded or an archive's member that could not be extracted, with what
// the plug-in answered.
class DecodeError : public PluginError {
  public:
    explicit DecodeError(uint32_t result, const wchar_t* description = kDecodingFailedText)
        : PluginError(kErrorDecodingFailed, description), result_(result) {}

    // The plug-in's answer (never 0), with kPreviewResult set when it came from the preview call.
    uint32_t Result() const { return result_; }

  private:
    uint32_t result_;
};

// A file of ours, not the plug-in's fault, that could not be written.
class UnwrittenFileError : public PluginError {
  public:
    // The system's error.
    explicit UnwrittenFileError(uint32_t systemError,
                                const wchar_t* description = kSavingFailedText)
        : PluginError(kErrorSavingFailed, description), systemError_(systemError) {}

    uint32_t SystemError() const { return systemError_; }

  private:
    uint32_t systemError_;
};

}  // namespace tessary
