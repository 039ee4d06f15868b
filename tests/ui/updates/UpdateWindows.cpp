#include "ui/updates/ReleaseNotesView.h"
#include "ui/updates/UpdateWindow.h"
#include "update/UpdateFixture.h"

#include <QFile>
#include <QLabel>
#include <QPushButton>

#include <ctime>

using namespace ambertide;
using Origin = UpdateSession::Origin;
using Outcome = UpdateInstaller::Outcome;

/// What a person sees and presses, from the check to the end.
class UpdateWindows : public QObject
{
    Q_OBJECT

    QPointer<UpdateWindow> m_window;
    bool m_isRelaunched = false;

    std::unique_ptr<UpdateService> service(UpdateFixture &fixture)
    {
        return fixture.service([this](UpdateSession &session) {
            auto window = std::make_unique<UpdateWindow>(session, [this] { m_isRelaunched = true; });
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
    bool shows(const char *start) const { return texts<QLabel>().startsWith(QString::fromUtf8(start)); }
    void pressDefault(const char *text)
    {
        const auto *button = qobject_cast<QPushButton *>(m_window->focusWidget());
        QVERIFY2(button && button->isDefault() && button->text() == QLatin1String(text), text);
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Return);
    }

private Q_SLOTS:
    void thePagesLeadFromTheCheckToTheInstalledUpdate()
    {
        UpdateFixture fixture;
        const QByteArray package(200000, 'p');
        fixture.server.serve("/notes", "<ul><li>Better<img src='" + fixture.server.url("/picture").toEncoded() + "'>");
        const auto updates = service(fixture);
        updates->check(Origin::Manual);
        QVERIFY(QTest::qWaitForWindowActive(m_window));
        QTRY_VERIFY(texts<QLabel>().contains(QStringLiteral("The update server could not answer")));
        fixture.announce(package, fixture.key.sign(package),
                         "<up:criticalUpdate/><up:shortVersionString>&lt;b&gt;0.6\u202e</"
                         "up:shortVersionString><up:releaseNotesLink>" +
                             fixture.server.url("/notes").toEncoded() + "</up:releaseNotesLink>");
        m_window->findChild<QPushButton *>()->click();
        QTRY_VERIFY(texts<QLabel>().contains(QStringLiteral("Ambertide <b>0.6 is now available. You have 0.5.")));
        QTRY_COMPARE(m_window->findChild<QPlainTextEdit *>()->toPlainText(), QStringLiteral("\u2022 Better"));
        for (const auto *label : m_window->findChildren<QLabel *>())
            QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(texts<QPushButton>(), QStringLiteral("Remind Me Later|Install Update|"));
        pressDefault("Install Update");
        QVERIFY(shows("Downloading"));
        QTest::keyClick(m_window->focusWidget(), Qt::Key_Return); // held for too long: this cancels nothing
        QTRY_VERIFY(shows("Ready to install|Ambertide <b>0.6 has been downloaded"));
        pressDefault("Install");
        QFile file(QString::fromStdString(fixture.toInstall.path.string()));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), package);
        QCOMPARE(texts<QPushButton>(), QString());
        m_window->close();
        QVERIFY(m_window->isVisible()); // an installation cannot be cancelled
        fixture.installed({Outcome::Dismissed, {}});
        pressDefault("Install");
        fixture.installed({Outcome::Installed, {}});
        QVERIFY(shows("Ambertide <b>0.6 is installed"));
        pressDefault("Restart Ambertide");
        QTRY_VERIFY(!m_window);
        QVERIFY(m_isRelaunched && !file.exists());
        QCOMPARE(fixture.server.requestCount("/picture"), 0);
    }

    void releaseNotesBecomePlainText()
    {
        ReleaseNotesView view;
        const auto shown = [&view](const char *html) {
            view.setNotes({QString::fromUtf8(html), false});
            return view.toPlainText().toStdString();
        };
        QCOMPARE(shown("<h1>New</h1>\n<p>One\n two</p><p>Three<br>four</p>"), "New\n\nOne two\n\nThree\nfour");
        QCOMPARE(shown("<ul>\n <li>one</li>\n <li><b>two</b></li></ul>"), "\u2022 one\n\u2022 two");
        QCOMPARE(shown("a &amp;&lt;b&gt; &#x41; <s<i>cript>&"), "a &<b> A cript>&");
        QCOMPARE(shown("a<script>alert('<p>')</script>b<!-- <p> --><img src=x>c 1 < 2 <style>p"), "abc 1 < 2");
        QCOMPARE(shown("a&#x202e;b\u202e&#7;c<pre>d"), "abc\nd");
        for (const char *piece :
             {"<", "<b>", "</i>", "<ul><li>", "<td rowspan=9999 colspan=9999>", "<!--", "<script", "&"}) {
            const auto before = std::clock(); // of the processor: other processes may be busy
            shown(QByteArray(piece).repeated(200000));
            QVERIFY2(std::clock() - before < 3 * CLOCKS_PER_SEC, piece);
        }
        view.setNotes({QStringLiteral("<b>plain</b>"), true});
        QCOMPARE(view.toPlainText(), QStringLiteral("<b>plain</b>"));
    }
};

QTEST_MAIN(UpdateWindows)
#include "UpdateWindows.moc"
