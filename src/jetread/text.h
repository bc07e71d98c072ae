#pragma once

#include <string>
#include <string_view>

namespace jetread {

/// Texts of a file as UTF-8.
class TextDecoder {
public:
    virtual ~TextDecoder() = default;
    TextDecoder() = default;
    TextDecoder(const TextDecoder &) = delete;
    TextDecoder &operator=(const TextDecoder &) = delete;

    /// `utf8` becomes the text; what cannot be decoded becomes U+FFFD.
    virtual void decode(std::string_view raw, std::string &utf8) = 0;
};

/// Jet 4: UTF-16, or the compressed form of it that begins with FF FE.
class UnicodeDecoder final : public TextDecoder {
public:
    void decode(std::string_view raw, std::string &utf8) override;
};

/// Jet 3: bytes of a code page. `known()` tells whether the system has the page.
class CodePageDecoder final : public TextDecoder {
public:
    explicit CodePageDecoder(int codePage);
    ~CodePageDecoder() override;

    [[nodiscard]] bool known() const noexcept;
    void decode(std::string_view raw, std::string &utf8) override;

private:
    void *m_converter;
};

/// Name of a code page as iconv knows it.
[[nodiscard]] std::string codePageName(int codePage);

} // namespace jetread
