#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/RecordListModel.h"
#include "App/Views/View.h"
#include "Core/Screens/MemoryBarFace.h"

namespace ravik::app {

/// A picture of the machine's memory, laid out along a bar, and what its marks stand for.
class MemoryPictureView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of a view")
    /// The picture in a sentence.
    Q_PROPERTY(QString spoken READ spoken NOTIFY changed FINAL)
    /// Roles `mark` (of LegendItem::Mark) and `words`.
    Q_PROPERTY(ravik::app::RecordModel* legend READ legend CONSTANT FINAL)

public:
    explicit MemoryPictureView(QObject* parent = nullptr);

    void show(MemoryBarFace face, const std::vector<LegendItem>& legend = {});
    const MemoryBarFace& face() const { return m_face; }

    QString spoken() const { return text(m_face.accessible); }
    RecordModel* legend() { return &m_legend; }

private:
    MemoryBarFace m_face;
    RecordListModel<LegendItem> m_legend;
};

}  // namespace ravik::app
