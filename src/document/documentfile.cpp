#include "document/documentfile.h"

#include "platform/nskeyedarchiver.h"

#include <algorithm>
#include <iterator>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

struct ListedVersion
{
    quint64 appversion;
    FormatFamily family;
};

// Exact values: a new version joins by its own number, never by a range.
constexpr ListedVersion listedVersions[] = {
    {1400, FormatFamily::EarlyBlowfish},       {1410, FormatFamily::EarlyBlowfish},
    {10402, FormatFamily::EarlyBlowfish},      {10403, FormatFamily::EarlyBlowfish},
    {10404, FormatFamily::EarlyBlowfish},      {10500, FormatFamily::BlowfishWithWindow},
    {10600, FormatFamily::BlowfishWithWindow}, {10601, FormatFamily::BlowfishWithWindow},
    {10602, FormatFamily::BlowfishWithWindow}, {10603, FormatFamily::BlowfishWithWindow},
    {10700, FormatFamily::FirstAes},           {20000, FormatFamily::FirstAes},
    {20001, FormatFamily::FirstAes},           {20100, FormatFamily::CurrentAes},
    {20101, FormatFamily::CurrentAes},         {20200, FormatFamily::CurrentAes},
    {20201, FormatFamily::CurrentAes},         {20300, FormatFamily::CurrentAes},
    {20301, FormatFamily::CurrentAes},         {20400, FormatFamily::CurrentAes},
};

/// Takes typed entries out of the root dictionary and notes an entry of the wrong class.
class EntryReader final
{
public:
    explicit EntryReader(const NSDictionary &root)
        : m_root(root)
    { }

    std::optional<NSNumber> number(QLatin1StringView key) { return take(key, &NSObject::number); }

    std::optional<QString> string(QLatin1StringView key) { return take(key, &NSObject::string); }

    std::optional<QByteArray> data(QLatin1StringView key) { return take(key, &NSObject::data); }

    std::optional<bool> boolean(QLatin1StringView key)
    {
        const std::optional<NSNumber> value = number(key);
        return value ? std::optional(value->boolValue()) : std::nullopt;
    }

    // The fraction of a coordinate is dropped on reading, although the file holds a double.
    double coordinate(QLatin1StringView key)
    {
        const std::optional<NSNumber> value = number(key);
        return value ? static_cast<double>(value->intValue()) : 0.0;
    }

    bool isWhole() const { return m_isWhole; }

private:
    template <typename T>
    std::optional<T> take(QLatin1StringView key, std::optional<T> (NSObject::*as)() const)
    {
        const auto found = m_root.constFind(key);
        if (found == m_root.constEnd() || found->isNil()) {
            return std::nullopt;
        }
        std::optional<T> value = ((*found).*as)();
        m_isWhole = m_isWhole && value.has_value();
        return value;
    }

    const NSDictionary &m_root;
    bool m_isWhole = true;
};

void readAesEntries(EntryReader &entries, DocumentFile &file)
{
    file.crDate = entries.data("crDate"_L1);
    file.crMAC = entries.data("crMAC"_L1);
    file.salt = entries.data("salt"_L1);
    file.iv = entries.data("IV"_L1);
    file.rc = entries.data("rc"_L1);
    file.sha1Rc = entries.data("sha1-rc"_L1);
}

NSRect readWindowRec(EntryReader &entries)
{
    NSRect rect;
    rect.height = entries.coordinate("windowRecHeight"_L1);
    rect.width = entries.coordinate("windowRecWidth"_L1);
    rect.x = entries.coordinate("windowRecX"_L1);
    rect.y = entries.coordinate("windowRecY"_L1);
    return rect;
}

// A negative version can only be a very large one to a reader that takes it unsigned.
quint64 versionOf(const std::optional<NSNumber> &number)
{
    if (!number) {
        return 0;
    }
    return number->longValue() < 0 ? static_cast<quint64>(number->longValue())
                                   : number->unsignedLongValue();
}

void set(NSDictionary &root, QLatin1StringView key, const std::optional<QByteArray> &value)
{
    if (value) {
        root.insert(key, NSObject(*value));
    }
}

void set(NSDictionary &root, QLatin1StringView key, const std::optional<bool> &value)
{
    if (value) {
        root.insert(key, NSObject(NSNumber::numberWithBool(*value)));
    }
}

} // namespace

FormatFamily familyOf(quint64 appversion)
{
    if (appversion >= firstNewerVersion) {
        return FormatFamily::Newer;
    }
    const auto listed = std::find_if(
        std::begin(listedVersions), std::end(listedVersions),
        [appversion](const ListedVersion &each) { return each.appversion == appversion; });
    return listed == std::end(listedVersions) ? FormatFamily::Unlisted : listed->family;
}

std::optional<DocumentFile> DocumentFile::fromData(const QByteArray &data)
{
    const std::optional<NSObject> root = NSKeyedUnarchiver::unarchiveObjectWithData(data);
    if (!root || !root->dictionary()) {
        return std::nullopt;
    }
    EntryReader entries(*root->dictionary());
    DocumentFile file;
    file.appversion = versionOf(entries.number("appversion"_L1));
    const FormatFamily family = familyOf(file.appversion);
    if (family != FormatFamily::Newer) {
        file.publicTextData = entries.string("publicTextData"_L1);
        file.textData = entries.data("textData"_L1);
        if (family != FormatFamily::Unlisted) {
            file.isEditable = entries.boolean("isEditable"_L1);
        }
        if (family != FormatFamily::Unlisted && family != FormatFamily::EarlyBlowfish) {
            file.windowRec = readWindowRec(entries);
        }
        if (family == FormatFamily::FirstAes || family == FormatFamily::CurrentAes) {
            readAesEntries(entries, file);
        }
        if (family == FormatFamily::CurrentAes) {
            file.makeToolbarVisibleAtDecrypt =
                entries.boolean("makeToolbarVisibleAtDecrypt"_L1).value_or(false);
        }
    }
    return entries.isWhole() ? std::optional(file) : std::nullopt;
}

QByteArray DocumentFile::toData() const
{
    NSDictionary root;
    root.insert("appversion"_L1, NSObject(NSNumber::numberWithUnsignedLong(currentFormatVersion)));
    if (publicTextData) {
        root.insert("publicTextData"_L1, NSObject(*publicTextData));
    }
    set(root, "isEditable"_L1, isEditable);
    set(root, "textData"_L1, textData);
    set(root, "crDate"_L1, crDate);
    set(root, "crMAC"_L1, crMAC);
    set(root, "salt"_L1, salt);
    set(root, "IV"_L1, iv);
    set(root, "rc"_L1, rc);
    set(root, "sha1-rc"_L1, sha1Rc);
    if (windowRec) {
        root.insert("windowRecHeight"_L1, NSObject(NSNumber::numberWithDouble(windowRec->height)));
        root.insert("windowRecWidth"_L1, NSObject(NSNumber::numberWithDouble(windowRec->width)));
        root.insert("windowRecX"_L1, NSObject(NSNumber::numberWithDouble(windowRec->x)));
        root.insert("windowRecY"_L1, NSObject(NSNumber::numberWithDouble(windowRec->y)));
    }
    set(root, "makeToolbarVisibleAtDecrypt"_L1, makeToolbarVisibleAtDecrypt);
    return NSKeyedArchiver::archivedDataWithRootObject(NSObject(root));
}

} // namespace quorvane
