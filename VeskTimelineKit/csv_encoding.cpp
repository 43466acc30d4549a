#include "csv_encoding_p.h"
#include "kit_tr_p.h"

#include <QStringDecoder>

#include <algorithm>
#include <array>

namespace VeskTimeline::Kit {

namespace {

constexpr char utf8Mark[] = "\xEF\xBB\xBF";
constexpr char utf16LittleMark[] = "\xFF\xFE";
constexpr char utf16BigMark[] = "\xFE\xFF";
constexpr char neverInUtf8 = '\xFF';

// What Windows-1252 has at 0x80 to 0x9F. The five places that it leaves free are control characters, as elsewhere.
constexpr std::array<char16_t, 32> windows1252{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                               0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool isUtf8(QByteArray head)
{
    // The last character may be cut: at most three bytes of it are there.
    constexpr int mostCut = 3;
    for (int cut = 0; cut < mostCut && !head.isEmpty() && (head.back() & 0xC0) == 0x80; ++cut)
        head.chop(1);
    if (!head.isEmpty() && (head.back() & 0x80) != 0)
        head.chop(1);
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString decoded = decoder.decode(head);
    Q_UNUSED(decoded)
    return !decoder.hasError();
}

struct ZeroBytes
{
    qsizetype even = 0;
    qsizetype odd = 0;
};

ZeroBytes countZeros(const QByteArray& head)
{
    ZeroBytes zeros;
    for (qsizetype i = 0; i < head.size(); ++i) {
        if (head.at(i) == '\0')
            ++(i % 2 == 0 ? zeros.even : zeros.odd);
    }
    return zeros;
}

// Of text with blanks, digits and commas in it, a good part of the upper bytes is zero, and hardly any lower one; and
// the first letter of a header line is mostly one of ASCII.
bool looksLikeUtf16(const QByteArray& head, bool isBigEndian)
{
    constexpr qsizetype leastShare = 3;
    constexpr qsizetype mostOthers = 4;
    const ZeroBytes zeros = countZeros(head);
    const qsizetype upper = isBigEndian ? zeros.even : zeros.odd;
    const qsizetype lower = isBigEndian ? zeros.odd : zeros.even;
    const bool startsWithAscii = head.size() >= 2 && head.at(isBigEndian ? 0 : 1) == '\0';
    return startsWithAscii && lower * mostOthers <= upper && upper * leastShare >= head.size() / 2;
}

bool hasFreePlaceOfWindows1252(const QByteArray& head)
{
    return std::any_of(head.begin(), head.end(),
                       [](char c) { return c == '\x81' || c == '\x8D' || c == '\x8F' || c == '\x90' || c == '\x9D'; });
}

} // namespace

QString CsvCode::name() const
{
    switch (encoding) {
    case CsvEncoding::Utf8:
        return QStringLiteral("UTF-8");
    case CsvEncoding::Utf16:
        return QStringLiteral("UTF-16");
    case CsvEncoding::Windows1252:
        return QStringLiteral("Windows-1252");
    case CsvEncoding::Latin1:
        break;
    }
    return QStringLiteral("Latin-1");
}

CsvCode detectCsvCode(const QByteArray& head, std::optional<CsvEncoding> said)
{
    if (head.startsWith(utf8Mark))
        return {CsvEncoding::Utf8, false, 3, false};
    if (head.startsWith(utf16LittleMark) || head.startsWith(utf16BigMark))
        return {CsvEncoding::Utf16, head.startsWith(utf16BigMark), 2, false};
    if (said)
        return {*said, *said == CsvEncoding::Utf16 && looksLikeUtf16(head, true), 0, false};
    for (const bool isBigEndian : {false, true}) {
        if (looksLikeUtf16(head, isBigEndian))
            return {CsvEncoding::Utf16, isBigEndian, 0, true};
    }
    if (isUtf8(head))
        return {};
    return {hasFreePlaceOfWindows1252(head) ? CsvEncoding::Latin1 : CsvEncoding::Windows1252, false, 0, true};
}

QByteArray CsvDecoder::toUtf8(QByteArray block)
{
    const auto mark = std::min<qsizetype>(m_markLeft, block.size());
    block.remove(0, mark);
    m_markLeft -= static_cast<int>(mark);
    if (m_code.encoding == CsvEncoding::Utf8)
        return block;
    if (m_code.encoding == CsvEncoding::Utf16)
        return fromUtf16(block);
    QString text = QString::fromLatin1(block);
    if (m_code.encoding == CsvEncoding::Windows1252) {
        for (QChar& c : text) {
            if (c >= u'\x80' && c <= u'\x9F')
                c = windows1252[static_cast<std::size_t>(c.unicode() - 0x80)];
        }
    }
    return text.toUtf8();
}

QByteArray CsvDecoder::fromUtf16(const QByteArray& block)
{
    const bool isEnd = block.isEmpty();
    const QByteArray bytes = m_rest + block;
    QByteArray utf8;
    QString run;
    const auto unit = [&](qsizetype at) {
        const auto first = static_cast<unsigned char>(bytes.at(at));
        const auto second = static_cast<unsigned char>(bytes.at(at + 1));
        return static_cast<char16_t>(m_code.isBigEndian ? first << 8 | second : second << 8 | first);
    };
    qsizetype at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        const QChar c = unit(at);
        if (!c.isSurrogate()) {
            run += c;
            continue;
        }
        if (c.isHighSurrogate() && at + 3 >= bytes.size() && !isEnd)
            break;
        if (c.isHighSurrogate() && at + 3 < bytes.size() && QChar(unit(at + 2)).isLowSurrogate()) {
            run += c;
            run += QChar(unit(at + 2));
            at += 2;
            continue;
        }
        utf8 += run.toUtf8() + neverInUtf8;
        run.clear();
    }
    utf8 += run.toUtf8();
    m_rest = bytes.mid(at);
    if (isEnd && !m_rest.isEmpty()) {
        m_rest.clear();
        utf8 += neverInUtf8;
    }
    return utf8;
}

} // namespace VeskTimeline::Kit
