#include "platform/sheetqueue.h"
#include "support/manualqueue.h"
#include "support/scriptedsheet.h"

#include <QList>
#include <QTest>

#include <memory>
#include <optional>

using namespace quorvane;

class SheetQueueTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneSheetIsUpAtATimeAndTheNextComesOnALaterTurn();
    void theCompletionRunsAfterTheSheetIsGone();
    void aSheetThatACompletionBeginsComesOnALaterTurn();
    void endingASheetThatWaitsTakesItOut();
    void endingAStrangerDoesNothing();
    void aSheetThatDiesWhileItWaitsIsPassedOver();
    void aSheetThatDiesWhileItIsUpMakesWay();
    void aQueueThatDiesLeavesNothingBehind();
    void aCompletionMayDestroyTheQueue();
    void anEndThatComesTwiceCountsOnce();
    void forgottenSheetsNeverBegin();
};

void SheetQueueTest::oneSheetIsUpAtATimeAndTheNextComesOnALaterTurn()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    ScriptedSheet first;
    ScriptedSheet second;
    ScriptedSheet third;
    QList<int> codes;
    for (ScriptedSheet *sheet : {&first, &second, &third}) {
        queue.begin(*sheet, [&codes](int code) { codes.append(code); });
    }
    QCOMPARE(queue.attachedSheet(), &first);
    QVERIFY(first.isUp() && !second.isUp() && !third.isUp());
    turns.runAll();
    QVERIFY(!second.isUp());

    first.endSheet(1001);
    QCOMPARE(queue.attachedSheet(), nullptr);
    QVERIFY(turns.runOne());
    QCOMPARE(queue.attachedSheet(), &second);
    queue.putForward();
    QCOMPARE(second.putForwards, 1);
    queue.end(second, 7);
    turns.runAll();
    QCOMPARE(queue.attachedSheet(), &third);
    third.endSheet(3);
    turns.runAll();
    QCOMPARE(codes, QList<int>({1001, 7, 3}));
    QCOMPARE(queue.attachedSheet(), nullptr);
    queue.putForward();
}

void SheetQueueTest::theCompletionRunsAfterTheSheetIsGone()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    ScriptedSheet sheet;
    bool wasUp = true;
    queue.begin(sheet, [&](int) { wasUp = sheet.isUp() || queue.attachedSheet() != nullptr; });
    queue.end(sheet, modalResponseStop);
    QVERIFY(!wasUp);
    QCOMPARE(sheet.lastCode, modalResponseStop);
}

void SheetQueueTest::aSheetThatACompletionBeginsComesOnALaterTurn()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    ScriptedSheet first;
    ScriptedSheet waiting;
    ScriptedSheet follower;
    queue.begin(first, [&](int) { queue.begin(follower, nullptr); });
    queue.begin(waiting, nullptr);
    first.endSheet(0);
    QVERIFY(!waiting.isUp() && !follower.isUp());
    turns.runAll();
    QVERIFY(waiting.isUp() && !follower.isUp());
    waiting.endSheet(0);
    turns.runAll();
    QVERIFY(follower.isUp());

    // The same with nobody in between, and with the very sheet that has just gone.
    queue.end(follower, 0);
    turns.runAll();
    queue.begin(first, [&](int) { queue.begin(first, nullptr); });
    first.endSheet(0);
    QVERIFY(!first.isUp());
    turns.runAll();
    QVERIFY(first.isUp());
}

void SheetQueueTest::endingASheetThatWaitsTakesItOut()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    ScriptedSheet first;
    ScriptedSheet second;
    std::optional<int> answer;
    queue.begin(first, nullptr);
    queue.begin(second, [&answer](int code) { answer = code; });
    queue.end(second, 5);
    QCOMPARE(answer, 5);
    first.endSheet(0);
    turns.runAll();
    QCOMPARE(second.begun, 0);
}

void SheetQueueTest::endingAStrangerDoesNothing()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    ScriptedSheet sheet;
    ScriptedSheet stranger;
    queue.begin(sheet, nullptr);
    queue.end(stranger, 1);
    QVERIFY(sheet.isUp());
}

void SheetQueueTest::aSheetThatDiesWhileItWaitsIsPassedOver()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    ScriptedSheet first;
    ScriptedSheet third;
    auto second = std::make_unique<ScriptedSheet>();
    bool answered = false;
    queue.begin(first, nullptr);
    queue.begin(*second, [&answered](int) { answered = true; });
    queue.begin(third, nullptr);
    first.endSheet(0);
    second.reset(); // its turn is queued already
    turns.runAll();
    QVERIFY(third.isUp());
    QVERIFY(!answered);
}

void SheetQueueTest::aSheetThatDiesWhileItIsUpMakesWay()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    auto first = std::make_unique<ScriptedSheet>();
    ScriptedSheet second;
    std::optional<int> answer;
    queue.begin(*first, [&answer](int code) { answer = code; });
    queue.begin(second, nullptr);
    first.reset();
    QCOMPARE(answer, modalResponseStop);
    turns.runAll();
    QVERIFY(second.isUp());
}

void SheetQueueTest::aQueueThatDiesLeavesNothingBehind()
{
    ManualQueue turns;
    ScriptedSheet first;
    ScriptedSheet second;
    int answers = 0;
    auto queue = std::make_unique<SheetQueue>(turns);
    queue->begin(first, [&answers](int) { ++answers; });
    queue->begin(second, [&answers](int) { ++answers; });
    first.endSheet(0);
    QCOMPARE(answers, 1);
    queue.reset(); // the turn of the second is queued
    turns.runAll();
    QCOMPARE(second.begun, 0);

    queue = std::make_unique<SheetQueue>(turns);
    queue->begin(first, [&answers](int) { ++answers; });
    queue.reset();
    first.endSheet(0);
    QCOMPARE(answers, 1);
}

void SheetQueueTest::aCompletionMayDestroyTheQueue()
{
    ManualQueue turns;
    ScriptedSheet sheet;
    auto queue = std::make_unique<SheetQueue>(turns);
    queue->begin(sheet, [&queue](int) { queue.reset(); });
    queue->end(sheet, 0);
    turns.runAll();
    QVERIFY(!queue);
}

void SheetQueueTest::anEndThatComesTwiceCountsOnce()
{
    // A sheet that keeps its answer function and tells it again when another is up.
    class Stubborn final : public NSSheet
    {
    public:
        void beginSheet(std::function<void(int code)> ended) override { tell = std::move(ended); }

        void endSheet(int code) override { tell(code); }

        void putForward() override { }

        std::function<void(int code)> tell;
    };

    ManualQueue turns;
    SheetQueue queue(turns);
    Stubborn stubborn;
    ScriptedSheet second;
    int answers = 0;
    queue.begin(stubborn, [&answers](int) { ++answers; });
    queue.begin(second, [&answers](int) { ++answers; });
    stubborn.tell(1);
    turns.runAll();
    stubborn.tell(1);
    QCOMPARE(answers, 1);
    QCOMPARE(queue.attachedSheet(), &second);
}

void SheetQueueTest::forgottenSheetsNeverBegin()
{
    ManualQueue turns;
    SheetQueue queue(turns);
    ScriptedSheet first;
    ScriptedSheet second;
    queue.begin(first, nullptr);
    queue.begin(second, nullptr);
    queue.forgetWaiting();
    QVERIFY(first.isUp());
    first.endSheet(0);
    turns.runAll();
    QCOMPARE(second.begun, 0);
}

QTEST_GUILESS_MAIN(SheetQueueTest)
#include "tst_sheetqueue.moc"
