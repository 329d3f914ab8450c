#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringDecoder>

#include <array>
#include <map>
#include <memory>

namespace quorvane {

constexpr int windowsLatin = 1252;
constexpr int symbolPage = 42; ///< The number that Windows gives to fonts of symbols.

/// The code page of a font's \fcharset; \a ansi where it says nothing of its own.
int codePageOfCharset(int charset, int ansi);

/// The character of a byte in Windows-1252; the five undefined bytes are C1 controls.
char16_t fromWindowsLatin(uchar byte);
/// The byte of a character in Windows-1252, or -1.
int toWindowsLatin(char16_t unit);

/// Decodes text of many code pages. No byte is lost: what a page does not know is taken for
/// Windows-1252, and so is every page that this machine does not know.
class RtfCodePages final
{
public:
    void decode(int codePage, QByteArrayView bytes, QString &out);

private:
    struct Page
    {
        bool isDouble = false;
        std::array<char16_t, 256> single {};
        QStringDecoder decoder;
    };

    Page *page(int codePage);
    static void decodeDouble(Page &page, int codePage, QByteArrayView bytes, QString &out);

    std::map<int, std::unique_ptr<Page>> m_pages;
};

} // namespace quorvane
