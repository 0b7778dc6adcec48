#pragma once

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <memory>

#include "core/pagenotifier.h"
#include "filing/itemmover.h"
#include "filing/moveview.h"
#include "filing/pagefileadder.h"
#include "tests/support/commandharness.h"
#include "tests/support/fixturestore.h"

namespace qmr::test {

// What a move told the window, as short texts: "EXPAND CAB1", "MOVE DRW3 CAB1",
// "REMOVE 5", "SELECT DOC1".
class RecordingMoveView : public MoveView
{
public:
    void expandNode(const NodeKey& key) override { calls << "EXPAND " + key.text(); }
    void moveNode(const NodeKey& key, const NodeKey& parent) override
    {
        calls << "MOVE " + key.text() + " " + parent.text();
    }
    void removePages(const QVector<qint32>& ids) override
    {
        for (const qint32 id : ids)
            calls << QStringLiteral("REMOVE %1").arg(id);
    }
    void selectNode(const NodeKey& key) override { calls << "SELECT " + key.text(); }
    QStringList calls;
};

class RecordingNotifier : public PageNotifier
{
public:
    void pageAdded(qint32 pageId) override { pages << pageId; }
    QVector<qint32> pages;
};

// Stops after a number of steps, as a person pressing Cancel would.
class CancellingProgress : public Progress
{
public:
    explicit CancellingProgress(int stepsBeforeCancel) : m_left(stepsBeforeCancel) {}
    void start(const QString& title, int, int maximum) override
    {
        titles << title;
        this->maximum = maximum;
        m_stopped = false;
    }
    void step(const QString&) override
    {
        if (--m_left <= 0)
            m_stopped = true;
    }
    void end() override
    {
        ++ends;
        m_stopped = true;
    }
    void showCancel() override { cancelShown = true; }
    bool stopped() const override { return m_stopped; }

    QStringList titles;
    int maximum = 0;
    int ends = 0;
    bool cancelShown = false;

private:
    int m_left;
    bool m_stopped = false;
};

// The sample store of FixtureStore with the moves' plain classes on it and no window:
// the navigator, the view and the notifier record what they are told. Files from outside
// are made in `outside`.
struct MoveBench : CommandHarness<>
{
    RecordingMoveView moves;
    RecordingNotifier notices;
    CommandContext* context = nullptr; // the moves' own, with the notifier on it
    std::unique_ptr<PageFileAdder> files;
    std::unique_ptr<ItemMover> mover;
    QTemporaryDir outside;

    explicit MoveBench(Progress* progress = nullptr)
    {
        FixtureStore(home.home()).fillSample();
        openSession();
        CommandHarness::context(progress);
        context = &contexts.back();
        context->pageNotifier = &notices;
        files = std::make_unique<PageFileAdder>(*context);
        mover = std::make_unique<ItemMover>(*context, *files, &moves);
    }

    // A file of `bytes` in the outside directory; its full path.
    QString write(const QString& name, const QByteArray& bytes)
    {
        const QString path = QDir(outside.path()).filePath(name);
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
        return path;
    }
    // An image file of the format its name ends in.
    QString image(const QString& name, const QSize& size = QSize(300, 400),
                  const char* format = nullptr)
    {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(QColor(40, 90, 160));
        const QString path = QDir(outside.path()).filePath(name);
        picture.save(path, format);
        return path;
    }
    PageRow page(qint32 id) const { return session->pages().page(id).value_or(PageRow()); }
    QString pagePath(qint32 id) const { return session->paths().computedPagePath(id); }
    QString thumbPath(qint32 id) const { return session->paths().computedThumbPath(id); }
};

} // namespace qmr::test
