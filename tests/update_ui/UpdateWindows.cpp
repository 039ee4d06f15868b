#include "update/UpdateFixture.h"
#include "update/ui/UpdateFailureText.h"
#include "update/ui/UpdateWindow.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSet>
#include <QTest>

using namespace ambertide;
using Origin = UpdateSession::Origin;
using Outcome = UpdateInstaller::Outcome;

namespace {

template <typename Widget>
QList<Widget *> visible(const QWidget &window)
{
    auto widgets = window.findChildren<Widget *>();
    widgets.removeIf([](const Widget *each) { return !each->isVisible(); });
    return widgets;
}

} // namespace

/// What a person sees and presses, from the check to the end.
class UpdateWindows : public QObject
{
    Q_OBJECT

private:
    UpdateWindow *m_window = nullptr;

    std::unique_ptr<UpdateService> service(UpdateFixture &fixture)
    {
        return fixture.service([this](UpdateSession &session) {
            auto window = std::make_unique<UpdateWindow>(session);
            m_window = window.get();
            connect(m_window, &QObject::destroyed, this, [this] { m_window = nullptr; });
            return window;
        });
    }
    QString text() const
    {
        QString text;
        if (m_window == nullptr)
            return text;
        for (const auto *label : visible<QLabel>(*m_window)) {
            if (label->height() < label->heightForWidth(label->width()))
                text += QStringLiteral("cut off: ");
            text += label->text() + u'\n';
        }
        return text;
    }
    QStringList buttons() const
    {
        QStringList texts;
        for (const auto *button : visible<QPushButton>(*m_window))
            texts += button->text();
        texts.sort();
        return texts;
    }
    void press(const QString &text)
    {
        for (auto *button : visible<QPushButton>(*m_window)) {
            if (button->text() == text)
                return button->click();
        }
        QFAIL(qPrintable(text + QStringLiteral(" is not among ") + buttons().join(u',')));
    }

private Q_SLOTS:
    void thePagesLeadFromTheCheckToTheInstalledUpdate()
    {
        UpdateFixture fixture;
        fixture.announce(
            "6", QByteArray(300000, 'p'),
            "<up:shortVersionString>&lt;b&gt;0.6</up:shortVersionString><description>&lt;ul&gt;&lt;li&gt;Warmer "
            "evenings&lt;img src='" +
                fixture.server.url("/picture").toEncoded() + "'&gt;&lt;/ul&gt;</description>");
        const auto updates = service(fixture);
        updates->check(Origin::Manual);
        QVERIFY(text().startsWith(QStringLiteral("Checking for updates")));
        QTRY_VERIFY(text().contains(QStringLiteral("Ambertide <b>0.6 is now available. You have 0.5.")));
        QCOMPARE(buttons(), (QStringList{QStringLiteral("Install Update"), QStringLiteral("Remind Me Later"),
                                         QStringLiteral("Skip This Version")}));
        QCOMPARE(visible<QPlainTextEdit>(*m_window).constFirst()->toPlainText(),
                 QStringLiteral("\u2022 Warmer evenings"));
        press(QStringLiteral("Install Update"));
        QVERIFY(text().startsWith(QStringLiteral("Downloading")));
        QTRY_VERIFY(text().startsWith(QStringLiteral("Ready to install\nAmbertide <b>0.6 has been downloaded")));
        press(QStringLiteral("Install"));
        QCOMPARE(buttons(), QStringList());
        m_window->close();
        QVERIFY(m_window->isVisible()); // an installation cannot be cancelled
        fixture.installer.request->done({Outcome::Installed, {}});
        QVERIFY(text().contains(QStringLiteral("is installed")));
        press(QStringLiteral("OK"));
        QTRY_VERIFY(m_window == nullptr);
        QCOMPARE(fixture.server.requestCount("/picture"), 0);
    }

    void aCheckThatFailsCanBeTriedAgain()
    {
        UpdateFixture fixture;
        const auto updates = service(fixture);
        updates->check(Origin::Manual);
        QTRY_VERIFY(text().contains(QStringLiteral("HTTP status 404")));
        fixture.serveFeed({});
        press(QStringLiteral("Try Again"));
        QTRY_VERIFY(text().contains(QStringLiteral("You're up to date!\nAmbertide 0.5")));
    }

    void closingTheWindowCancels()
    {
        UpdateFixture fixture;
        fixture.server.answer("/feed", {"HTTP/1.1 200 OK\r\n", "<rss>", false, true});
        const auto updates = service(fixture);
        updates->check(Origin::Manual);
        m_window->close();
        QTRY_VERIFY(m_window == nullptr);
    }

    void whatAnUpdateIsDecidesWhatIsOffered()
    {
        const QString later = QStringLiteral("Remind Me Later");
        const std::pair<QByteArray, QStringList> offers[] = {
            {"<up:criticalUpdate/>", {QStringLiteral("Install Update"), later}},
            {"<up:informationalUpdate/>",
             {QStringLiteral("Learn More\u2026"), later, QStringLiteral("Skip This Version")}}};
        for (const auto &[mark, offered] : offers) {
            UpdateFixture fixture;
            fixture.announce("6", "package", mark);
            const auto updates = service(fixture);
            updates->check(Origin::Automatic);
            QTRY_VERIFY(m_window != nullptr);
            QCOMPARE(buttons(), offered);
        }
    }

    void theProgressOfADownloadIsShown()
    {
        UpdateFixture fixture;
        fixture.announce("6", QByteArray(4000, 'p'));
        fixture.server.answer("/package",
                              {"HTTP/1.1 200 OK\r\nContent-Length: 4000\r\n", QByteArray(1000, 'p'), false, true});
        const auto updates = service(fixture);
        updates->check(Origin::Manual);
        QTRY_VERIFY(text().contains(QStringLiteral("You have")));
        press(QStringLiteral("Install Update"));
        QTRY_COMPARE(visible<QProgressBar>(*m_window).constFirst()->value(), 250);
        press(QStringLiteral("Cancel"));
        QTRY_VERIFY(m_window == nullptr);
    }

    void everyFailureHasASentenceOfItsOwn()
    {
        QSet<QString> sentences;
        const int last = static_cast<int>(UpdateFailure::Kind::CannotInstall);
        for (int kind = 0; kind <= last; ++kind)
            sentences.insert(describeForPeople({static_cast<UpdateFailure::Kind>(kind), {}}));
        QCOMPARE(sentences.size(), last + 1);
        QVERIFY(!sentences.contains(QString()));
    }
};

QTEST_MAIN(UpdateWindows)
#include "UpdateWindows.moc"
