// The review of unclassified activity: every application, website and local
// PDF that recorded time without a class, longest first, so that the user
// classifies each once. Choosing a class for an application or a website
// writes its rule; for a PDF the chosen scope says how far the class reaches.
// A classified row leaves the list (the core recomputes it).
#pragma once

#include <string>
#include <vector>

#include <QWidget>

#include "classification/classification_enumerations.hpp"
#include "classification/local_pdf_classification.hpp"
#include "ui/models/review_list.hpp"

class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;

namespace lumenote::recording {
class UnclassifiedReviewService;
}

namespace lumenote::ui {

class ReviewPage final : public QWidget {
    Q_OBJECT

  public:
    // `review` must outlive the page.
    explicit ReviewPage(recording::UnclassifiedReviewService& review, QWidget* parent = nullptr);

    // Reads the list again (after a session ended, a rule changed elsewhere).
    void reload();
    // Gives the selected row `choice`; a PDF's class reaches as far as the
    // scope chosen beside the buttons. A refusal shows its sentence.
    bool classifySelected(classification::ActivityClassification choice);
    const std::vector<models::ReviewRow>& rows() const { return rows_; }
    QListWidget& list() { return *list_; }

  Q_SIGNALS:
    // A class was given: the tray's and Today's invitations change.
    void classified();

  private:
    void selectionChanged();
    classification::LocalPDFClassificationScope chosenPDFScope() const;
    void showError(const QString& message);

    recording::UnclassifiedReviewService& review_;
    std::vector<models::ReviewRow> rows_;
    QLabel* summary_;
    QLabel* banner_;
    QListWidget* list_;
    QLabel* pdfScopeLabel_;
    QComboBox* pdfScope_;
    std::vector<QPushButton*> classButtons_;
};

}  // namespace lumenote::ui
