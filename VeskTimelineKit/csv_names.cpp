#include "csv_names_p.h"

#include <QMap>

namespace VeskTimeline::Kit {

using namespace Qt::StringLiterals;

namespace {

// Words one after the other, in lower case: letters and digits, with a new word at each capital behind a small letter.
QStringList wordsOf(const QString& name)
{
    QStringList words;
    QString word;
    QChar before;
    for (const QChar c : name) {
        const bool isNew = !c.isLetterOrNumber() || (c.isUpper() && before.isLower());
        if (isNew && !word.isEmpty()) {
            words.append(word.toLower());
            word.clear();
        }
        if (c.isLetterOrNumber())
            word += c;
        before = c;
    }
    if (!word.isEmpty())
        words.append(word.toLower());
    return words;
}

std::optional<CsvTimeUnit> unitOf(const QString& word)
{
    using Unit = CsvTimeUnit;
    static const QMap<QString, Unit> units{{u"s"_s, Unit::Seconds},
                                           {u"sec"_s, Unit::Seconds},
                                           {u"secs"_s, Unit::Seconds},
                                           {u"second"_s, Unit::Seconds},
                                           {u"seconds"_s, Unit::Seconds},
                                           {u"ms"_s, Unit::Milliseconds},
                                           {u"msec"_s, Unit::Milliseconds},
                                           {u"msecs"_s, Unit::Milliseconds},
                                           {u"millis"_s, Unit::Milliseconds},
                                           {u"milliseconds"_s, Unit::Milliseconds},
                                           {u"us"_s, Unit::Microseconds},
                                           {u"usec"_s, Unit::Microseconds},
                                           {u"micros"_s, Unit::Microseconds},
                                           {u"microseconds"_s, Unit::Microseconds},
                                           {u"µs"_s, Unit::Microseconds},
                                           {u"ns"_s, Unit::Nanoseconds},
                                           {u"nsec"_s, Unit::Nanoseconds},
                                           {u"nanos"_s, Unit::Nanoseconds},
                                           {u"nanoseconds"_s, Unit::Nanoseconds}};
    const auto found = units.constFind(word);
    return found == units.cend() ? std::nullopt : std::optional(*found);
}

bool isDateWord(const QString& word)
{
    static const QStringList words{u"date"_s, u"day"_s, u"datum"_s, u"tag"_s, u"fecha"_s};
    return words.contains(word);
}

bool isTimeWord(const QString& word)
{
    static const QStringList words{u"time"_s, u"clock"_s, u"hour"_s, u"zeit"_s, u"uhrzeit"_s, u"heure"_s, u"hora"_s};
    return words.contains(word);
}

bool isFillWord(const QString& word)
{
    static const QStringList words{u"datetime"_s, u"timestamp"_s, u"at"_s,      u"on"_s,     u"utc"_s,
                                   u"gmt"_s,      u"local"_s,     u"ts"_s,      u"id"_s,     u"no"_s,
                                   u"number"_s,   u"scheduled"_s, u"planned"_s, u"actual"_s, u"the"_s};
    return words.contains(word);
}

} // namespace

const QList<CsvField>& csvFields()
{
    static const QList<CsvField> fields{CsvField::Track,    CsvField::Label, CsvField::Start,    CsvField::End,
                                        CsvField::Duration, CsvField::Color, CsvField::Editable, CsvField::Description};
    return fields;
}

QString csvFieldName(CsvField field)
{
    switch (field) {
    case CsvField::Track:
        return QStringLiteral("track");
    case CsvField::Label:
        return QStringLiteral("label");
    case CsvField::Start:
        return QStringLiteral("start");
    case CsvField::End:
        return QStringLiteral("end");
    case CsvField::Duration:
        return QStringLiteral("duration");
    case CsvField::Color:
        return QStringLiteral("color");
    case CsvField::Editable:
        return QStringLiteral("editable");
    case CsvField::Description:
        break;
    }
    return QStringLiteral("description");
}

QStringList csvSynonyms(CsvField field)
{
    switch (field) {
    case CsvField::Start:
        return {u"start"_s,     u"starts"_s,   u"started"_s, u"begin"_s,     u"begins"_s,     u"began"_s,
                u"beginning"_s, u"from"_s,     u"beginn"_s,  u"anfang"_s,    u"von"_s,        u"ab"_s,
                u"debut"_s,     u"début"_s,    u"inicio"_s,  u"desde"_s,     u"departure"_s,  u"depart"_s,
                u"departs"_s,   u"departed"_s, u"abfahrt"_s, u"startzeit"_s, u"startdatum"_s, u"release"_s,
                u"released"_s,  u"first"_s,    u"since"_s,   u"opened"_s,    u"open"_s,       u"launch"_s,
                u"created"_s,   u"received"_s, u"when"_s};
    case CsvField::End:
        return {u"end"_s,     u"ends"_s,       u"ended"_s,     u"finish"_s,  u"finished"_s, u"finishes"_s,
                u"until"_s,   u"till"_s,       u"through"_s,   u"to"_s,      u"ende"_s,     u"bis"_s,
                u"fin"_s,     u"hasta"_s,      u"stop"_s,      u"stopped"_s, u"arrival"_s,  u"arrive"_s,
                u"arrives"_s, u"arrived"_s,    u"ankunft"_s,   u"endzeit"_s, u"enddatum"_s, u"eol"_s,
                u"last"_s,    u"closed"_s,     u"close"_s,     u"due"_s,     u"deadline"_s, u"expires"_s,
                u"expiry"_s,  u"expiration"_s, u"completed"_s, u"resolved"_s};
    case CsvField::Duration:
        return {u"duration"_s, u"dur"_s,   u"length"_s, u"elapsed"_s, u"lasts"_s,
                u"dauer"_s,    u"durée"_s, u"duree"_s,  u"duración"_s};
    case CsvField::Track:
        return {u"track"_s,    u"group"_s,      u"zone"_s,      u"route"_s, u"category"_s, u"lane"_s,
                u"thread"_s,   u"team"_s,       u"resource"_s,  u"room"_s,  u"channel"_s,  u"line"_s,
                u"project"_s,  u"gruppe"_s,     u"kategorie"_s, u"spur"_s,  u"raum"_s,     u"linie"_s,
                u"projekt"_s,  u"department"_s, u"person"_s,    u"owner"_s, u"assignee"_s, u"machine"_s,
                u"host"_s,     u"process"_s,    u"queue"_s,     u"stage"_s, u"phase"_s,    u"section"_s,
                u"calendar"_s, u"kalender"_s,   u"location"_s,  u"type"_s,  u"class"_s,    u"kind"_s};
    case CsvField::Label:
        return {u"label"_s,    u"name"_s,        u"title"_s,   u"subject"_s,  u"summary"_s, u"text"_s,
                u"headline"_s, u"event"_s,       u"task"_s,    u"activity"_s, u"message"_s, u"headsign"_s,
                u"titel"_s,    u"bezeichnung"_s, u"betreff"_s, u"aufgabe"_s,  u"titre"_s,   u"nom"_s,
                u"nombre"_s,   u"título"_s,      u"topic"_s,   u"job"_s,      u"what"_s};
    case CsvField::Color:
        return {u"color"_s, u"colour"_s, u"farbe"_s};
    case CsvField::Editable:
    case CsvField::Description:
        break;
    }
    return {csvFieldName(field)};
}

CsvName::CsvName(const QString& name)
{
    QStringList rest;
    const QStringList words = wordsOf(name);
    for (const QString& word : words) {
        const std::optional<CsvTimeUnit> wordUnit = unitOf(word);
        if (wordUnit && !unit)
            unit = wordUnit;
        isOfDate = isOfDate || isDateWord(word);
        isOfTime = isOfTime || isTimeWord(word);
        if (!wordUnit && !isDateWord(word) && !isTimeWord(word) && !isFillWord(word))
            rest.append(word);
    }
    isGeneral = rest.isEmpty() && !words.isEmpty() &&
                (isOfDate || isOfTime || words.contains(u"timestamp"_s) || words.contains(u"datetime"_s) ||
                 words.contains(u"ts"_s));
    endsWithName = !rest.isEmpty() && (rest.last().endsWith(u"name"_s) || rest.last().endsWith(u"title"_s));
    // "route_name" and "route_title" name a route.
    if (rest.size() > 1 && (rest.last() == u"name"_s || rest.last() == u"title"_s || rest.last() == u"code"_s))
        rest.removeLast();
    core = rest.join(u' ');
}

} // namespace VeskTimeline::Kit
