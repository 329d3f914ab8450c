"""Stations of the whole workflow: note, read-only, another password, locks, a kill and what is left."""

import signal

from stations import Names, in_the_clear, must, station

NOTE = "ring twice"
NEW_PASSWORD = "staple battery 8"
UNTITLED = "driftwood"


@station("public-note")
def a_public_note_is_written(tour):
    screen = tour.screen
    screen.choose(Names.file_menu, Names.public_note_item)
    screen.focus(screen.find("text", Names.note))
    screen.type(NOTE)
    tour.picture()
    screen.press(Names.close)
    screen.gone("push button", Names.close)


@station("read-only")
def a_read_only_text_takes_no_word(tour):
    screen = tour.screen
    screen.choose(Names.format_menu, Names.prevent_editing)
    screen.focus(tour.editor())
    screen.type("lost")
    screen.choose(Names.format_menu, Names.allow_editing)
    tour.see_the_text()


@station("another-password")
def the_password_is_changed(tour):
    screen = tour.screen
    screen.choose(Names.file_menu, Names.password_item)
    screen.fill(screen.find("password text", Names.old_password), tour.password)
    screen.fill(screen.find("password text", Names.next_password), NEW_PASSWORD)
    screen.fill(screen.find("password text", Names.next_password_again), NEW_PASSWORD)
    tour.picture()
    screen.press(Names.change_password)
    screen.sheet(Names.password_changed, [Names.ok])
    screen.press(Names.ok)
    tour.password = NEW_PASSWORD


@station("saved-by-itself")
def it_is_saved_without_a_command(tour):
    """The new password and the note are in the file, though nobody has saved."""
    tour.screen.wait("the note in the file", lambda: NOTE.encode() in tour.document.read_bytes())
    tour.screen.wait("a window that is not marked edited",
                     lambda: "*" not in tour.screen.find("frame").name)


@station("locked-by-menu")
def it_is_locked_by_the_menu(tour):
    screen = tour.screen
    screen.choose(Names.file_menu, Names.lock_item)
    screen.sheet(Names.lock_question, [Names.ok, Names.cancel])
    screen.press(Names.ok)
    screen.find("password text", Names.password)
    must(screen.find("text", Names.note).text == NOTE, "the note does not show")
    must(not tour.readable(), f"readable in the locked window: {tour.readable()}")


@station("unlocked-with-the-new-password")
def it_opens_with_the_new_password(tour):
    tour.unlock(tour.password)
    tour.see_the_text()


@station("automatic-lock")
def it_locks_by_itself_in_the_background(tour):
    """Another program has the keyboard for longer than the setting allows, here half a minute."""
    screen = tour.screen
    other = tour.stranger()
    screen.wait("the window without the keyboard", lambda: not screen.find("frame").has("active"))
    screen.find("password text", Names.password, seconds=90)
    must(not tour.readable(), f"readable in the locked window: {tour.readable()}")
    other.terminate()
    other.wait(30)


@station("recovered-after-a-kill")
def an_untitled_text_survives_a_kill(tour):
    screen = tour.screen
    tour.quit()
    tour.start()
    tour.protect(tour.password)
    screen.focus(tour.editor())
    screen.type(UNTITLED)
    kept = tour.desktop.home / "state" / "quorvane" / "recovery"
    screen.wait("a file that keeps it", lambda: list(kept.rglob("*.quorvane")))
    for path in kept.rglob("*.quorvane"):
        must(not in_the_clear(path.read_bytes(), (UNTITLED,)), f"{path.name} tells the text")
    screen.program.send_signal(signal.SIGKILL)
    screen.program.wait(30)
    tour.start()
    screen.find("password text", Names.password)
    must("Recovered" in screen.find("frame").name, f"the window's title is {screen.find('frame').name}")
    must(not screen.sees("text", Names.editor), "the recovered text shows without its password")
    tour.unlock(tour.password)
    screen.wait(f"the text '{UNTITLED}'", lambda: tour.editor().text.strip() == UNTITLED)
    tour.picture()
    screen.keys("ctrl+w")
    screen.press(Names.dont_save)
    screen.wait("nothing left of it", lambda: not list(kept.rglob("*.quorvane")))
    tour.quit()
