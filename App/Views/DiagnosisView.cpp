#include "App/Views/DiagnosisView.h"

#include <algorithm>

namespace ravik::app {

namespace {

/// Empty as long as there is no such screen.
std::function<void()> toDisk(const Program& program) {
    if (std::ranges::find(program.nav.screens(), Destination::disk) == program.nav.screens().end()) return {};
    return [&program] { program.nav.go(Destination::disk); };
}

}  // namespace

DiagnosisView::DiagnosisView(const Program& program, QObject* parent)
    : View(parent),
      m_program(program),
      m_model(program.monitor, program.actions, toDisk(program)),
      m_resolved(this),
      m_map(this),
      m_evidence(this) {
    using Kind = DiagnosisSection::Kind;
    for (const Kind kind : {Kind::free, Kind::asks, Kind::quit, Kind::left}) {
        m_sections.append(new SectionView(kind, this));
    }
    m_model.onChange([this] { show(); });
    m_navigating = program.nav.observe([this](Nav::Change change) {
        if (change == Nav::Change::info) followNav();
    });
    followNav();
    show();
}

DiagnosisView::~DiagnosisView() = default;

void DiagnosisView::open(const QString& finding) { m_program.nav.setInfo(FindingInfo{finding.toStdString()}); }

void DiagnosisView::closeSheet() { m_program.nav.setInfo({}); }

void DiagnosisView::followNav() {
    const auto& info = m_program.nav.info();
    if (const auto* finding = info ? std::get_if<FindingInfo>(&*info) : nullptr) {
        m_model.openEvidence(finding->finding);
    } else {
        m_model.closeEvidence();
    }
}

void DiagnosisView::show() {
    const DiagnosisScreen& screen = m_model.screen();
    m_calmPicture.show(screen.calm.bar, screen.calm.legend);
    m_hero.show(screen.hero, screen.free);
    m_beforeAfter.show(screen.beforeAfter);
    // Behind the map the cards stay as they were; nobody would see them leave.
    if (screen.picker.selected == DiagnosisState::Mode::cards || screen.state != DiagnosisScreen::State::findings) {
        for (SectionView* section : m_sections) section->show(screen.sections);
        m_resolved.set(screen.resolved);
    }
    m_map.show(m_model.map());
    m_evidence.show(m_model.evidence());
    publish(m_face, {screen.state, screen.waiting, screen.calm, screen.picker, m_model.state().selected.has_value()});
}

}  // namespace ravik::app
