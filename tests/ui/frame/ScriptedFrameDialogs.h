#pragma once

#include "ui/frame/base/FrameDialogs.h"

#include <QPrinter>

#include <deque>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mirovane::test {

/// A user who answers what he was told to answer. A question without a prepared answer fails the test.
class ScriptedFrameDialogs final : public FrameDialogs {
public:
    std::deque<bool> answers;
    std::deque<SaveAnswer> saveAnswers;
    std::deque<std::optional<std::string>> files; ///< answers of both file dialogs

    std::deque<std::optional<std::string>> insertedTexts;

    std::vector<std::string> questions;
    std::vector<SaveOffer> offers;
    std::vector<std::string> failures;
    std::vector<FileChoice> choices;
    std::vector<ExportRequest> exportRequests;
    std::deque<std::optional<ExportSettings>> exportAnswers;
    std::vector<CustomZoom> zoomStarts;
    std::deque<std::optional<CustomZoom>> zoomAnswers;
    std::vector<PhotoSettings> photoRequests;
    std::deque<std::optional<PhotoSettings>> photoAnswers;
    QStringList pages;
    std::function<void(QPrinter&)> choosesPrinter; ///< none: he cancels
    std::function<void(QPrinter&)> setsUpPage;
    int abouts = 0;

    bool ask(const Question& question) override { return askStop(question.text); }
    void fail(const std::string& text) override { failures.push_back(text); }
    SaveAnswer askToSave(const std::string& question, SaveOffer offer) override {
        offers.push_back(offer);
        questions.push_back(question);
        return take(saveAnswers, SaveAnswer::Cancel, question);
    }
    std::optional<std::string> chooseFileToOpen(const FileChoice& choice) override { return choose(choice); }
    std::optional<std::string> chooseFileToSave(const FileChoice& choice) override { return choose(choice); }
    bool askStop(const std::string& question) override {
        questions.push_back(question);
        return take(answers, false, question);
    }
    std::optional<ExportSettings> askExport(const ExportRequest& request) override {
        exportRequests.push_back(request);
        return take(exportAnswers, std::optional<ExportSettings>(), "Export");
    }
    std::optional<std::string> insertText(const std::string& command) override {
        return take(insertedTexts, std::optional<std::string>(), command);
    }
    std::optional<CustomZoom> askCustomZoom(const CustomZoom& start) override {
        zoomStarts.push_back(start);
        return take(zoomAnswers, std::optional<CustomZoom>(), "Custom Zoom");
    }
    std::optional<PhotoSettings> askPhotoSettings(const PhotoSettings& settings) override {
        photoRequests.push_back(settings);
        return take(photoAnswers, std::optional<PhotoSettings>(), "User Photo Settings");
    }
    bool openPage(const QString& path) override {
        pages << path;
        return true;
    }
    bool choosePrinter(QPrinter& printer) override {
        if (!choosesPrinter)
            return false;
        choosesPrinter(printer);
        return true;
    }
    void setUpPage(QPrinter& printer) override { setsUpPage(printer); }
    void previewPages(QPrinter& printer, const std::function<void(QPrinter&)>& print) override {
        print(printer);
    }
    void about() override { ++abouts; }

private:
    template <typename T>
    static T take(std::deque<T>& prepared, T otherwise, const std::string& question) {
        if (prepared.empty()) {
            ADD_FAILURE() << "unexpected question: " << question;
            return otherwise;
        }
        T answer = prepared.front();
        prepared.pop_front();
        return answer;
    }

    std::optional<std::string> choose(const FileChoice& choice) {
        choices.push_back(choice);
        return take(files, std::optional<std::string>(), choice.title);
    }
};

} // namespace mirovane::test
