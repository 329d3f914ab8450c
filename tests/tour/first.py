"""The first stations: a document from its first password to a lock and back."""

import stat

from stations import (BOLD, FAMILY, ITALIC, PASSWORD, PLAIN, SERIF, SIZE, TEXT, UNDERLINED, UNSAVED,
                      WORDS, Names, in_the_clear, must, station)


@station("mandatory-password")
def a_new_document_asks_for_its_password(tour):
    tour.start()
    tour.screen.find("password text", Names.new_password)
    tour.screen.find("password text", Names.new_password_again)


@station("too-short-is-refused")
def five_characters_are_refused(tour):
    screen = tour.screen
    screen.fill(screen.find("password text", Names.new_password), PASSWORD[:5])
    screen.fill(screen.find("password text", Names.new_password_again), PASSWORD[:5])
    screen.press(Names.set_password)
    screen.sheet(Names.too_short, [Names.retry])


@station("password-accepted")
def a_longer_one_is_accepted(tour):
    screen = tour.screen
    screen.press(Names.retry)
    tour.protect(PASSWORD)


@station("styled-text")
def text_is_typed_in_styles(tour):
    screen = tour.screen
    screen.focus(tour.editor())
    screen.type(PLAIN + " ")
    for word, style in ((BOLD, Names.bold), (ITALIC, Names.italic), (UNDERLINED, Names.underline)):
        screen.press(style)
        screen.focus(tour.editor())
        screen.type(word)
        screen.press(style)
        screen.focus(tour.editor())
        screen.type(" ")
    for combo, value in ((Names.font, FAMILY), (Names.font_size, SIZE)):
        screen.fill(screen.combo(combo), value)
        screen.keys("Return")
    screen.focus(tour.editor())
    screen.type(SERIF)
    tour.see_the_text()
    tour.editor_size = screen.window()[2:]


@station("saved")
def it_is_saved_encrypted(tour):
    screen = tour.screen
    tour.save_as(tour.document)
    data = tour.document.read_bytes()
    must(data.startswith(b"bplist00"), f"the file begins with {data[:8]}")
    must(not in_the_clear(data, (*WORDS, UNSAVED.strip(), PASSWORD)),
         f"in the clear in the file: {in_the_clear(data, (*WORDS, UNSAVED.strip(), PASSWORD))}")
    mode = stat.S_IMODE(tour.document.stat().st_mode)
    must(mode == 0o600, f"the file's mode is {mode:o}")


@station("closed")
def it_is_closed(tour):
    tour.close()
    must(not tour.screen.sees("text", Names.editor), "the editor shows beside the start window")
    recents = tour.screen.find("list", Names.recent_documents)
    must(any(row.name.startswith(tour.document.stem) for row in recents.children()),
         f"the document is not among the recent ones: {[row.name for row in recents.children()]}")


@station("opened-locked")
def it_opens_as_a_small_locked_window(tour):
    tour.quit()
    tour.start(tour.document)
    tour.screen.find("password text", Names.password)
    must(not tour.screen.sees("text", Names.editor), "the editor shows in a locked window")
    must(not tour.readable(), f"readable in a locked window: {tour.readable()}")
    tour.screen.wait("a window smaller than the editor's", lambda: all(
        now < before for now, before in zip(tour.screen.window()[2:], tour.editor_size)))
    tour.locked_size = tour.screen.window()[2:]


@station("wrong-password")
def a_wrong_password_opens_nothing(tour):
    tour.unlock(PASSWORD + "x")
    tour.screen.sheet(Names.wrong, [Names.ok])
    must(not tour.readable(), f"readable after a wrong password: {tour.readable()}")


@station("right-password")
def the_right_password_brings_the_text_back(tour):
    screen = tour.screen
    screen.press(Names.ok)
    screen.gone("label", Names.wrong)
    tour.unlock(PASSWORD)
    tour.see_the_text()
    screen.wait(f"the window as large as it was, {tour.editor_size}",
                lambda: screen.window()[2:] == tour.editor_size)


@station("locked")
def it_is_locked_by_command(tour):
    """With a word that was not saved: it must be in the file at the end."""
    screen = tour.screen
    screen.keys("ctrl+End")
    screen.type(UNSAVED)
    tour.text = TEXT + UNSAVED
    tour.see_the_text()
    screen.keys("ctrl+l")
    screen.sheet(Names.lock_question, [Names.ok, Names.cancel])
    screen.press(Names.ok)
    screen.find("password text", Names.password)
    screen.gone("text", Names.editor)
    must(not tour.readable(), f"readable in the locked window: {tour.readable()}")
    screen.wait(f"the window as small as it was, {tour.locked_size}",
                lambda: screen.window()[2:] == tour.locked_size)


@station("unlocked-again")
def it_is_unlocked_again(tour):
    tour.unlock(PASSWORD)
    tour.see_the_text()
