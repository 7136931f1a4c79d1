#pragma once

#include <QtQml/qqmlregistration.h>

#include "App/Views/Text.h"
#include "App/Views/View.h"
#include "Core/Screens/Controls.h"

namespace ravik::app {

/// What can be had back, and the Free button beside it.
class HeroView : public View {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a part of a view")
    Q_PROPERTY(QString value READ value NOTIFY changed FINAL)
    Q_PROPERTY(QString unit READ unit NOTIFY changed FINAL)
    Q_PROPERTY(QString spoken READ spoken NOTIFY changed FINAL)
    Q_PROPERTY(QString label READ label NOTIFY changed FINAL)
    Q_PROPERTY(QString line READ line NOTIFY changed FINAL)
    Q_PROPERTY(QString freeLabel READ freeLabel NOTIFY changed FINAL)
    Q_PROPERTY(QString freeHelp READ freeHelp CONSTANT FINAL)
    Q_PROPERTY(bool canFree READ canFree NOTIFY changed FINAL)
    Q_PROPERTY(bool isFreeing READ isFreeing NOTIFY changed FINAL)

public:
    using View::View;

    void show(HeroFace hero, FreeButtonFace free) { publish(m_face, {std::move(hero), std::move(free)}); }

    QString value() const { return text(m_face.hero.readout.value); }
    QString unit() const { return text(m_face.hero.readout.unit); }
    QString spoken() const { return text(m_face.hero.readout.spoken()); }
    QString label() const { return text(m_face.hero.label); }
    QString line() const { return text(m_face.hero.line); }
    QString freeLabel() const { return text(m_face.free.label); }
    QString freeHelp() const { return text(FreeButtonFace::help); }
    bool canFree() const { return m_face.free.isEnabled; }
    bool isFreeing() const { return m_face.free.isBusy; }

private:
    struct Face {
        HeroFace hero;
        FreeButtonFace free;
        friend bool operator==(const Face&, const Face&) = default;
    };

    Face m_face;
};

}  // namespace ravik::app
