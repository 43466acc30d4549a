#pragma once

#include <QAbstractItemModel>
#include <QStringList>

/// Writes down, in order, every signal that a model emits: its name and, where there are any, the rows it speaks of.
class ModelSignals : public QObject
{
public:
    explicit ModelSignals(QAbstractItemModel* model)
    {
        using Model = QAbstractItemModel;
        connect(model, &Model::dataChanged, this,
                [this](const QModelIndex& first, const QModelIndex& last, const QVector<int>& roles) {
                    m_texts.append(QStringLiteral("dataChanged %1 %2 roles %3")
                                       .arg(textOf(first), textOf(last), QString::number(roles.size())));
                });
        connect(model, &Model::headerDataChanged, this, [this] { note("headerDataChanged"); });
        connect(model, &Model::layoutAboutToBeChanged, this, [this] { note("layoutAboutToBeChanged"); });
        connect(model, &Model::layoutChanged, this, [this] { note("layoutChanged"); });
        connect(model, &Model::modelAboutToBeReset, this, [this] { note("modelAboutToBeReset"); });
        connect(model, &Model::modelReset, this, [this] { note("modelReset"); });
        connectRows(model, &Model::rowsAboutToBeInserted, "rowsAboutToBeInserted");
        connectRows(model, &Model::rowsInserted, "rowsInserted");
        connectRows(model, &Model::rowsAboutToBeRemoved, "rowsAboutToBeRemoved");
        connectRows(model, &Model::rowsRemoved, "rowsRemoved");
        connectRows(model, &Model::columnsAboutToBeInserted, "columnsAboutToBeInserted");
        connectRows(model, &Model::columnsInserted, "columnsInserted");
        connectRows(model, &Model::columnsAboutToBeRemoved, "columnsAboutToBeRemoved");
        connectRows(model, &Model::columnsRemoved, "columnsRemoved");
        connect(model, &Model::rowsAboutToBeMoved, this, [this] { note("rowsAboutToBeMoved"); });
        connect(model, &Model::rowsMoved, this, [this] { note("rowsMoved"); });
        connect(model, &Model::columnsAboutToBeMoved, this, [this] { note("columnsAboutToBeMoved"); });
        connect(model, &Model::columnsMoved, this, [this] { note("columnsMoved"); });
    }

    /// What was emitted since the last call.
    QStringList take()
    {
        QStringList texts;
        texts.swap(m_texts);
        return texts;
    }

private:
    static QString textOf(const QModelIndex& index)
    {
        if (!index.isValid())
            return QStringLiteral("(root)");
        return QStringLiteral("(track %1 row %2 column %3)")
            .arg(index.internalId())
            .arg(index.row())
            .arg(index.column());
    }

    void note(const char* name) { m_texts.append(QString::fromLatin1(name)); }

    template <typename Signal>
    void connectRows(QAbstractItemModel* model, Signal signal, const char* name)
    {
        connect(model, signal, this, [this, name](const QModelIndex& parent, int first, int last) {
            m_texts.append(
                QStringLiteral("%1 %2 %3..%4").arg(QString::fromLatin1(name), textOf(parent)).arg(first).arg(last));
        });
    }

    QStringList m_texts;
};
