#pragma once

#include <VeskTimelineKit/csv_options.h>

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;

namespace Workbench {

/// Fields for all options of a file of comma-separated values but its columns. What is left at "Detected" is not said.
class CsvOptionsForm : public QWidget
{
    Q_OBJECT

public:
    explicit CsvOptionsForm(QWidget* parent = nullptr);

    /// Shows what is said; nothing is emitted. The columns do not matter.
    void setOptions(const VeskTimeline::Kit::CsvOptions& options);
    /// What is said, without columns. A zone that does not exist and an empty delimiter are left out.
    VeskTimeline::Kit::CsvOptions options() const;
    /// Names at the entries "Detected" what was detected.
    void setDetected(const VeskTimeline::Kit::CsvOptions& detected);
    /// What is wrong with what was typed; null when nothing is.
    QString problem() const;

Q_SIGNALS:
    void changed();

private:
    QComboBox* addBox(const char* name, const QString& label, int row, int column);
    QComboBox* addEditableBox(const char* name, const QString& label, int row, int column);
    void createDelimiter();
    void createPattern();
    void createZone();
    void updateOther();

    QComboBox* m_delimiter = nullptr;
    QLineEdit* m_otherDelimiter = nullptr;
    QComboBox* m_decimalPoint = nullptr;
    QComboBox* m_encoding = nullptr;
    QComboBox* m_timeUnit = nullptr;
    QComboBox* m_dateFormat = nullptr;
    QComboBox* m_timeZone = nullptr;
};

} // namespace Workbench
