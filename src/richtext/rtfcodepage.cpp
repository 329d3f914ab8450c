#include "richtext/rtfcodepage.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr int utf8Page = 65001;

struct PageName
{
    int codePage;
    const char *name; ///< As ICU knows it.
    bool isDouble;
};

constexpr PageName pageNames[] = {
    {437, "IBM437", false},
    {737, "IBM737", false},
    {775, "IBM775", false},
    {850, "IBM850", false},
    {852, "IBM852", false},
    {855, "IBM855", false},
    {857, "IBM857", false},
    {860, "IBM860", false},
    {861, "IBM861", false},
    {862, "IBM862", false},
    {863, "IBM863", false},
    {864, "IBM864", false},
    {865, "IBM865", false},
    {866, "IBM866", false},
    {874, "windows-874", false},
    {932, "windows-932", true},
    {936, "GBK", true},
    {949, "windows-949", true},
    {950, "Big5", true},
    {1250, "windows-1250", false},
    {1251, "windows-1251", false},
    {1253, "windows-1253", false},
    {1254, "windows-1254", false},
    {1255, "windows-1255", false},
    {1256, "windows-1256", false},
    {1257, "windows-1257", false},
    {1258, "windows-1258", false},
    {1361, "ibm-1363", true},
    {10000, "macintosh", false},
    {10001, "Shift_JIS", true},
    {10002, "Big5", true},
    {10003, "windows-949", true},
    {10006, "x-mac-greek", false},
    {10007, "x-mac-cyrillic", false},
    {10008, "GBK", true},
    {10029, "x-mac-centraleurroman", false},
    {10081, "x-mac-turkish", false},
};

// Windows-1252 from 0x80 to 0x9f.
constexpr char16_t latinUpper[32] = {
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178,
};

void appendLatin(QByteArrayView bytes, QString &out)
{
    out.reserve(out.size() + bytes.size());
    for (const char c : bytes) {
        out.append(QChar(fromWindowsLatin(uchar(c))));
    }
}

void appendSymbols(QByteArrayView bytes, QString &out)
{
    constexpr uchar bullet = 0xb7;
    for (const char c : bytes) {
        const auto byte = uchar(c);
        // ASCII stays readable; the rest goes where fonts of symbols keep their characters.
        out.append(byte == bullet ? QChar(0x2022) : QChar(byte < 0x80 ? byte : 0xf000 + byte));
    }
}

bool isLead(int codePage, uchar byte)
{
    const bool japanese = codePage == 932 || codePage == 10001;
    return byte >= 0x81 && byte <= 0xfe
        && !(japanese && ((byte >= 0xa0 && byte <= 0xdf) || byte > 0xfc));
}

/// How many bytes the character at \a at takes; 1 for a lead byte without a fitting second one.
qsizetype characterLength(int codePage, QByteArrayView bytes, qsizetype at)
{
    return isLead(codePage, uchar(bytes[at])) && at + 1 < bytes.size()
            && uchar(bytes[at + 1]) >= 0x30
        ? 2
        : 1;
}

} // namespace

int codePageOfCharset(int charset, int ansi)
{
    switch (charset) {
    case 2:
        return symbolPage;
    case 77:
        return 10000;
    case 78:
        return 10001;
    case 79:
        return 10003;
    case 80:
        return 10008;
    case 81:
        return 10002;
    case 85:
        return 10006;
    case 86:
        return 10081;
    case 88:
        return 10029;
    case 89:
        return 10007;
    case 128:
        return 932;
    case 129:
        return 949;
    case 130:
        return 1361;
    case 134:
        return 936;
    case 136:
        return 950;
    case 161:
        return 1253;
    case 162:
        return 1254;
    case 163:
        return 1258;
    case 177:
        return 1255;
    case 178:
        return 1256;
    case 186:
        return 1257;
    case 204:
        return 1251;
    case 222:
        return 874;
    case 238:
        return 1250;
    case 254:
        return 437;
    case 255:
        return 850;
    default:
        return ansi;
    }
}

char16_t fromWindowsLatin(uchar byte)
{
    return byte >= 0x80 && byte < 0xa0 ? latinUpper[byte - 0x80] : byte;
}

int toWindowsLatin(char16_t unit)
{
    if (unit < 0x80 || (unit >= 0xa0 && unit <= 0xff)) {
        return unit;
    }
    const auto *found = std::find(std::begin(latinUpper), std::end(latinUpper), unit);
    return found != std::end(latinUpper) ? 0x80 + int(found - std::begin(latinUpper)) : -1;
}

void RtfCodePages::decode(int codePage, QByteArrayView bytes, QString &out)
{
    if (codePage == symbolPage) {
        return appendSymbols(bytes, out);
    }
    if (codePage == utf8Page) {
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        const QString text = decoder(bytes);
        return decoder.hasError() ? appendLatin(bytes, out) : void(out.append(text));
    }
    Page *found = codePage == windowsLatin ? nullptr : page(codePage);
    if (!found) {
        return appendLatin(bytes, out);
    }
    if (found->isDouble) {
        return decodeDouble(*found, codePage, bytes, out);
    }
    for (const char c : bytes) {
        out.append(QChar(found->single[uchar(c)]));
    }
}

RtfCodePages::Page *RtfCodePages::page(int codePage)
{
    const auto known = m_pages.find(codePage);
    if (known != m_pages.end()) {
        return known->second.get();
    }
    const auto *name =
        std::find_if(std::begin(pageNames), std::end(pageNames),
                     [codePage](const PageName &n) { return n.codePage == codePage; });
    if (name == std::end(pageNames)) {
        return nullptr;
    }
    auto made = std::make_unique<Page>();
    made->isDouble = name->isDouble;
    made->decoder = QStringDecoder(name->name, QStringDecoder::Flag::Stateless);
    if (!made->decoder.isValid()) {
        made.reset();
    } else if (!made->isDouble) {
        for (int byte = 0; byte < 256; ++byte) {
            const char c = char(byte);
            const QString text = made->decoder(QByteArrayView(&c, 1));
            const bool good = text.size() == 1 && text.at(0) != QChar::ReplacementCharacter;
            made->single[std::size_t(byte)] =
                good && byte >= 0x80 ? text.at(0).unicode() : fromWindowsLatin(uchar(byte));
        }
    }
    return m_pages.emplace(codePage, std::move(made)).first->second.get();
}

void RtfCodePages::decodeDouble(Page &page, int codePage, QByteArrayView bytes, QString &out)
{
    // The decoder would keep a lone lead byte back: hand it whole characters only.
    qsizetype whole = 0;
    while (whole < bytes.size()) {
        const qsizetype length = characterLength(codePage, bytes, whole);
        if (length == 1 && isLead(codePage, uchar(bytes[whole]))) {
            break;
        }
        whole += length;
    }
    const QString text = page.decoder(bytes.first(whole));
    if (whole == bytes.size() && !text.contains(QChar::ReplacementCharacter)) {
        out.append(text);
        return;
    }
    for (qsizetype at = 0; at < bytes.size();) {
        const QByteArrayView one = bytes.sliced(at, characterLength(codePage, bytes, at));
        const bool lone =
            one.size() == 1 && uchar(one[0]) >= 0x80 && isLead(codePage, uchar(one[0]));
        const QString character = lone ? QString() : QString(page.decoder(one));
        if (character.isEmpty() || character.contains(QChar::ReplacementCharacter)) {
            appendLatin(one, out);
        } else {
            out.append(character);
        }
        at += one.size();
    }
}

} // namespace quorvane
