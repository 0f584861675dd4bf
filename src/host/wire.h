// Values in a row of bytes, as messages between processes have them.
//
// A message's fields are named once, in a function that takes either of the two classes:
//
//     template <class Wire> void Transfer(Wire& wire, Message& message) { wire(message.code, …); }
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace tessary {

template <typename T>
concept WireNumber = std::is_arithmetic_v<T> || std::is_enum_v<T>;

// Appends what it is given.
class WireWriter {
  public:
    template <typename... Fields>
    void operator()(const Fields&... fields) {
        (Put(fields), ...);
    }

    const std::vector<uint8_t>& Bytes() const { return bytes_; }

  private:
    template <WireNumber T>
    void Put(T value) {
        Append(&value, sizeof(value));
    }
    template <typename Unit>
    void Put(const std::basic_string<Unit>& text) {
        Put(static_cast<uint32_t>(text.size()));
        Append(text.data(), text.size() * sizeof(Unit));
    }
    template <typename T>
    void Put(const std::optional<T>& value) {
        Put(value.has_value());
        if (value) Put(*value);
    }
    template <typename T>
    void Put(const std::vector<T>& items) {
        Put(static_cast<uint32_t>(items.size()));
        for (const T& item : items)
            Put(item);
    }
    template <typename T, size_t kCount>
    void Put(const T (&items)[kCount]) {
        Append(items, sizeof(items));
    }
    // A record of ours: its Transfer names the fields.
    template <typename T>
    requires std::is_class_v<T>
    void Put(const T& record) {
        if constexpr (std::is_trivially_copyable_v<T>) {
            T copy = record;
            Transfer(*this, copy);
        } else {
            Transfer(*this, const_cast<T&>(record));  // of such a one a writer changes nothing
        }
    }
    void Append(const void* data, size_t size) {
        const auto* const first = static_cast<const uint8_t*>(data);
        bytes_.insert(bytes_.end(), first, first + size);
    }

    std::vector<uint8_t> bytes_;
};

// Takes values in their order out of bytes that somebody else has made, and trusts none of them:
// what does not fit into the rest is empty, and so is all behind it.
class WireReader {
  public:
    explicit WireReader(std::span<const uint8_t> bytes) : rest_(bytes) {}

    template <typename... Fields>
    void operator()(Fields&... fields) {
        (Take(fields), ...);
    }

    // Whether all that was asked for was there, and no more.
    bool IsWhole() const { return isGood_ && rest_.empty(); }

  private:
    template <WireNumber T>
    void Take(T& value) {
        value = {};
        Copy(&value, sizeof(value));
    }
    // Any byte but 0 means true: a bool of another value is none.
    void Take(bool& value) {
        uint8_t byte = 0;
        Take(byte);
        value = byte != 0;
    }
    template <typename Unit>
    void Take(std::basic_string<Unit>& text) {
        text.resize(Count(sizeof(Unit)));
        Copy(text.data(), text.size() * sizeof(Unit));
    }
    template <typename T>
    void Take(std::optional<T>& value) {
        bool isThere = false;
        Take(isThere);
        value.reset();
        if (isThere) Take(value.emplace());
    }
    template <typename T>
    void Take(std::vector<T>& items) {
        items.clear();
        // Records of fixed size are at least as long on the wire; others have a byte at least.
        items.resize(Count(std::is_trivially_copyable_v<T> ? sizeof(T) : 1));
        for (T& item : items)
            Take(item);
    }
    template <typename T, size_t kCount>
    void Take(T (&items)[kCount]) {
        std::memset(items, 0, sizeof(items));
        Copy(items, sizeof(items));
    }
    template <typename T>
    requires std::is_class_v<T>
    void Take(T& record) { Transfer(*this, record); }

    // Of items that follow; 0 when so many cannot be there.
    size_t Count(size_t itemSize) {
        uint32_t count = 0;
        Take(count);
        if (count > rest_.size() / itemSize) isGood_ = false;
        return isGood_ ? count : 0;
    }
    void Copy(void* target, size_t size) {
        if (!isGood_ || size > rest_.size()) {
            isGood_ = false;
            return;
        }
        if (size != 0) std::memcpy(target, rest_.data(), size);
        rest_ = rest_.subspan(size);
    }

    std::span<const uint8_t> rest_;
    bool isGood_ = true;
};

}  // namespace tessary
