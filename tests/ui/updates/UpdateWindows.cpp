#include "ui/controls/HouseStyle.h"
#include "ui/updates/ReleaseNotesView.h"
#include "ui/updates/UpdateWindow.h"
#include "update/UpdateFixture.h"

#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace ambertide;
using Origin = UpdateSession::Origin;
using Outcome = UpdateInstaller::Outcome;

/// What a person sees and presses, from the check to the end.
class UpdateWindows : public QObject
{
    Q_OBJECT

private:
    QPointer<UpdateWindow> m_window;

    std::unique_ptr<UpdateService> service(UpdateFixture &fixture)
    {
        return fixture.service([this](UpdateSession &session) {
            auto window = std::make_unique<UpdateWindow>(session);
            window->bringForward(); // at once
            m_window = window.get();
            return window;
        });
    }
    /// The texts of all labels or of all buttons that can be seen.
    template <typename Widget>
    QString texts() const
    {
        QString texts;
        for (const auto *widget : m_window ? m_window->findChildren<Widget *>() : QList<Widget *>()) {
            if (widget->isVisible() && widget->height() < widget->heightForWidth(widget->width()))
                texts += QStringLiteral("cut off: ");
            if (widget->isVisible())
                texts += widget->text() + u'|';
        }
        return texts;
    }
    QString notes() const { return m_window->findChild<QPlainTextEdit *>()->toPlainText(); }
    void press(const char *text)
    {
        for (auto *button : m_window->findChildren<QPushButton *>()) {
            if (button->isVisible() && button->text() == QLatin1String(text))
                return button->click();
        }
        QFAIL(text);
    }

private Q_SLOTS:
    void thePagesLeadFromTheCheckToTheInstalledUpdate()
    {
        UpdateFixture fixture;
        const QByteArray package(200000, 'p');
        const QByteArray link = "<up:releaseNotesLink>" + fixture.server.url("/notes").toEncoded();
        fixture.server.serve("/notes", "<ul><li>Better<img src='" + fixture.server.url("/picture").toEncoded() + "'>");
        fixture.announce(package, fixture.key.sign(package),
                         "<up:shortVersionString>&lt;b&gt;0.6\u202e</up:shortVersionString>" + link +
                             "</up:releaseNotesLink>");
        const auto updates = service(fixture);
        updates->check(Origin::Manual);
        QVERIFY(texts<QLabel>().startsWith(QStringLiteral("Checking for updates")));
        QTRY_VERIFY(texts<QLabel>().contains(QStringLiteral("Ambertide <b>0.6 is now available. You have 0.5.")));
        QTRY_COMPARE(notes(), QStringLiteral("\u2022 Better"));
        for (const auto *label : m_window->findChildren<QLabel *>())
            QCOMPARE(label->textFormat(), Qt::PlainText);
        press("Install Update");
        QTRY_VERIFY(
            texts<QLabel>().startsWith(QStringLiteral("Ready to install|Ambertide <b>0.6 has been downloaded")));
        press("Install");
        QFile file(QString::fromStdString(fixture.installedPackage.string()));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), package);
        QCOMPARE(fixture.installedSignature, fixture.key.sign(package));
        QCOMPARE(texts<QPushButton>(), QString());
        m_window->close();
        QVERIFY(m_window->isVisible()); // an installation cannot be cancelled
        fixture.installed({Outcome::Dismissed, {}});
        press("Install");
        fixture.installed({Outcome::Installed, {}});
        QVERIFY(texts<QLabel>().contains(QStringLiteral("is installed")));
        m_window->close();
        QTRY_VERIFY(!m_window);
        QVERIFY(!file.exists());
        QCOMPARE(fixture.server.requestCount("/picture"), 0);
    }

    void releaseNotesBecomePlainText()
    {
        ReleaseNotesView view;
        const auto shown = [&view](const QString &html) {
            view.setNotes({html, false});
            return view.toPlainText().toStdString();
        };
        QCOMPARE(shown(QStringLiteral("<h1>New</h1>\n<p>One\n two</p><p>Three<br>four</p>")),
                 "New\n\nOne two\n\nThree\nfour");
        QCOMPARE(shown(QStringLiteral("<ul>\n <li>one</li>\n <li><b>two</b></li></ul>")), "\u2022 one\n\u2022 two");
        QCOMPARE(shown(QStringLiteral("a &amp;&lt;b&gt; &#x41; <s<i>cript>&")), "a &<b> A cript>&");
        QCOMPARE(
            shown(QStringLiteral("a<script>alert('<p>')</script>b<!-- <p> --><img src=x onerror=y>c 1 < 2 <style>p")),
            "abc 1 < 2");
        QCOMPARE(shown(QStringLiteral("a&#x202e;b\u202e&#7;c<pre>d")), "abc\nd");
        for (const char *piece : {"<", "<b>", "</i>", "<li>", "<table><tr><td>", "<td rowspan=9999 colspan=9999>",
                                  "<!--", "<script", "&lt;", "&", "<br>", " "}) {
            QElapsedTimer watch;
            watch.start();
            shown(QString::fromLatin1(piece).repeated(200000));
            QVERIFY2(watch.elapsed() < 3000, piece);
        }
        view.setNotes({QStringLiteral("<b>plain</b>"), true});
        QCOMPARE(view.toPlainText(), QStringLiteral("<b>plain</b>"));
    }

    void aFailedCheckCanBeTriedAgainAndTheServiceMayGo()
    {
        UpdateFixture fixture;
        auto updates = service(fixture);
        updates->check(Origin::Manual);
        QTRY_VERIFY(texts<QLabel>().contains(QStringLiteral("HTTP status 404")));
        fixture.announce("package", fixture.key.sign("package"), "<up:criticalUpdate/>");
        press("Try Again");
        QTRY_COMPARE(texts<QPushButton>(), QStringLiteral("Remind Me Later|Install Update|"));
        press("Install Update");
        QTRY_VERIFY(texts<QLabel>().startsWith(QStringLiteral("Ready")));
        press("Install");
        updates.reset();
        fixture.installed({Outcome::Installed, {}});
    }

    void returnGoesOnAndEscapeEnds()
    {
        UpdateFixture fixture;
        fixture.announce("package", fixture.key.sign("package"));
        const auto updates = service(fixture);
        const auto isFocused = [this](const char *text) {
            const auto *button = qobject_cast<QPushButton *>(m_window->focusWidget());
            return button != nullptr && button->isDefault() && button->text() == QLatin1String(text);
        };
        updates->check(Origin::Manual);
        QVERIFY(QTest::qWaitForWindowActive(m_window));
        QTRY_VERIFY(isFocused("Install Update"));
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
        QVERIFY(texts<QLabel>().startsWith(QStringLiteral("Downloading")));
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Return); // held for too long: this cancels nothing
        QTRY_VERIFY(isFocused("Install"));
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!m_window);
    }

    void thePageGrowsWithTheFont()
    {
        QApplication::setStyle(new HouseStyle); // which tells the controls
        UpdateFixture fixture;
        const auto updates = service(fixture);
        updates->check(Origin::Manual);
        QTRY_VERIFY(texts<QLabel>().contains(QStringLiteral("HTTP status 404")));
        const int height = m_window->height();
        const QFont font = QApplication::font();
        QFont larger = font;
        larger.setPointSize(20);
        QApplication::setFont(larger);
        QTRY_VERIFY(m_window->height() > height && !texts<QLabel>().contains(QStringLiteral("cut off")));
        QApplication::setFont(font);
    }
};

QTEST_MAIN(UpdateWindows)
#include "UpdateWindows.moc"
