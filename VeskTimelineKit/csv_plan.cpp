#include "csv_plan_p.h"
#include "csv_time_guess_p.h"
#include "kit_tr_p.h"
#include "quoted_text_p.h"

#include <algorithm>
#include <memory>

namespace VeskTimeline::Kit {

namespace {

constexpr std::size_t mostSampleRecords = 500;
constexpr char delimiterLine[] = "sep=";

// Nothing behind the text.
CsvRecordReader::NextBlock oneBlock(const QByteArray& text)
{
    return [text, isTaken = false]() mutable {
        const QByteArray block = isTaken ? QByteArray() : text;
        isTaken = true;
        return block;
    };
}

/// Finds out about a file from its beginning.
class PlanMaker
{
public:
    PlanMaker(const CsvSource& source, const CsvOptions& said) : m_source(source), m_said(said)
    {
        m_plan.options = said;
        m_plan.code = detectCsvCode(source.head(), said.encoding);
    }

    CsvPlan make()
    {
        readText();
        // The kit's own way includes the encoding: other bytes are a fault, on the line where they are.
        if (m_plan.code.isGuessed && m_plan.code.encoding != CsvEncoding::Utf16 && isOwnHeader()) {
            m_plan.code = {};
            readText();
        }
        if (m_plan.code.isGuessed)
            m_plan.guesses.append(Tr::tr("the text is taken for %1").arg(m_plan.code.name()));
        m_plan.options.encoding = m_plan.code.encoding;
        chooseDelimiter();
        readSample();
        if (m_plan.problem.isNull())
            findColumns();
        return std::move(m_plan);
    }

private:
    void readText()
    {
        CsvDecoder decoder(m_plan.code);
        m_text = decoder.toUtf8(m_source.head());
        if (m_source.isHeadAll())
            m_text += decoder.toUtf8({});
        m_plan.hasDelimiterLine = m_text.startsWith(delimiterLine) && m_text.size() > 5 &&
                                  (m_text.at(5) == '\n' || m_text.at(5) == '\r') &&
                                  isCsvDelimiter(QChar::fromLatin1(m_text.at(4)));
    }

    QStringList headerWith(QChar delimiter) const
    {
        CsvRecordReader reader(oneBlock(m_text), delimiter.toLatin1(), {});
        return reader.next() ? reader.fields() : QStringList();
    }

    bool isOwnHeader() const
    {
        CsvSample sample;
        sample.header = headerWith(m_said.delimiter.value_or(u','));
        CsvColumns columns;
        return columns.find(sample, m_said.columns).isNull() && columns.isOwnWay();
    }

    void chooseDelimiter()
    {
        if (m_plan.hasDelimiterLine && !m_said.delimiter) {
            m_plan.options.delimiter = QChar::fromLatin1(m_text.at(4));
            return;
        }
        if (m_said.delimiter)
            return;
        constexpr int worthOfAStart = 1000;
        int best = 0;
        for (const QChar delimiter : {u',', u';', u'\t', u'|'}) {
            CsvSample sample;
            sample.header = headerWith(delimiter);
            CsvColumns columns;
            const bool isFound = sample.header.size() > 1 && columns.find(sample, {}).isNull();
            const int worth = static_cast<int>(std::min<qsizetype>(sample.header.size(), worthOfAStart - 1)) +
                              (isFound ? worthOfAStart : 0);
            if (worth <= best)
                continue;
            best = worth;
            m_plan.options.delimiter = delimiter;
        }
        if (!m_plan.options.delimiter)
            m_plan.options.delimiter = u',';
        if (m_plan.options.delimiter != u',')
            m_plan.guesses.append(Tr::tr("fields are taken to be separated by %1")
                                      .arg(m_plan.options.delimiter == u'\t'
                                               ? Tr::tr("tabs")
                                               : quotedText(QString(*m_plan.options.delimiter))));
    }

    void readSample()
    {
        if (!isCsvDelimiter(*m_plan.options.delimiter)) {
            m_plan.problem = Tr::tr("fields cannot be separated by %1").arg(quotedText(QString(*m_said.delimiter)));
            return;
        }
        if (!m_source.isHeadAll() && !m_text.contains('\n') && !m_text.contains('\r')) {
            m_plan.problem = Tr::tr("the line is too long");
            m_plan.problemLine = 1;
            return;
        }
        CsvRecordReader reader(oneBlock(m_text), m_plan.options.delimiter->toLatin1(), m_plan.code.name());
        bool hasHeader = reader.next();
        if (hasHeader && m_plan.hasDelimiterLine)
            hasHeader = reader.next();
        if (!hasHeader) {
            m_plan.problem = reader.errorReason().isNull() ? Tr::tr("the file is empty") : reader.errorReason();
            m_plan.problemLine = reader.errorLine();
            return;
        }
        CsvSample& sample = m_plan.sample;
        sample.header = reader.fields();
        sample.headerLine = reader.recordLine();
        while (sample.records.size() < mostSampleRecords && reader.next())
            sample.records.push_back(reader.fields());
        // The last record may go on behind the head.
        if (!m_source.isHeadAll() && sample.records.size() < mostSampleRecords && sample.records.size() > 1)
            sample.records.pop_back();
    }

    void findColumns()
    {
        CsvPlan& plan = m_plan;
        plan.problemLine = plan.sample.headerLine;
        plan.problem = plan.columns.find(plan.sample, m_said.columns);
        plan.guesses += plan.columns.guesses();
        if (!plan.problem.isNull())
            return;
        plan.options.columns = plan.columns.names();
        plan.problem = guessCsvTimes(plan.columns, plan.sample, plan.options, plan.guesses);
        plan.problemLine = 0;
    }

    const CsvSource& m_source;
    const CsvOptions& m_said;
    CsvPlan m_plan;
    QByteArray m_text;
};

} // namespace

bool isCsvDelimiter(QChar c)
{
    constexpr char16_t lastAscii = 0x7F;
    return c == u'\t' || (c >= u' ' && c < lastAscii && c != u'"' && !c.isLetterOrNumber());
}

CsvPlan makeCsvPlan(const CsvSource& source, const CsvOptions& said)
{
    return PlanMaker(source, said).make();
}

CsvRecordReader csvRecords(CsvSource& source, const CsvPlan& plan)
{
    auto decoder = std::make_shared<CsvDecoder>(plan.code);
    const auto nextBlock = [&source, decoder, isAtEnd = false]() mutable {
        QByteArray text;
        while (text.isEmpty() && !isAtEnd) {
            const QByteArray block = source.nextBlock();
            isAtEnd = block.isEmpty();
            text = decoder->toUtf8(block);
        }
        return text;
    };
    return {nextBlock, plan.options.delimiter->toLatin1(), plan.code.name()};
}

} // namespace VeskTimeline::Kit
