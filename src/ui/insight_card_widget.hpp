// One insight on the Insights page: its title, statement and explanation, the
// evidence it rests on (label and value per line), how strong that evidence
// is, and a Dismiss button that asks the page to dismiss it.
#pragma once

#include <QWidget>

#include "ui/models/insights_view.hpp"

namespace lumenote::ui {

// A design::Card inside, so that it looks like every other card.
class InsightCardWidget final : public QWidget {
    Q_OBJECT

  public:
    explicit InsightCardWidget(const models::InsightCard& card, QWidget* parent = nullptr);

    const QString& insightId() const { return id_; }

  Q_SIGNALS:
    // The user dismissed the insight `id` as shown with `evidenceRevision`.
    void dismissRequested(const QString& id, const QString& evidenceRevision);

  private:
    QString id_;
};

}  // namespace lumenote::ui
