"""Stations of the application around its documents: preferences, starts, updates, About."""

from stations import PASSWORD, Names, must, station

PANELS = (Names.general, Names.edit, Names.advanced, Names.update)
SIZE = "14"
LATEST = {"LRA": 20700, "GFU": "https://update.example/get", "DPU": "https://update.example/page"}


def settings(tour):
    return tour.desktop.home / "config" / "quorvane" / "quorvane.ini"


def kept(tour, line):
    tour.screen.wait(f"{line} in the settings",
                     lambda: line in settings(tour).read_text(errors="replace").splitlines())


def open_preferences(tour, panel):
    if not any(frame.name in PANELS for frame in tour.screen.all("frame")):
        tour.screen.choose(Names.quorvane_menu, Names.preferences_item)
    tour.screen.press(panel)
    tour.screen.find("frame", panel)


def choose_startup(tour, action):
    """In the pop-up of the preferences, which are left behind."""
    screen = tour.screen
    open_preferences(tour, Names.general)
    screen.click(screen.combo(Names.at_startup))
    screen.keys("Home", *["Down"] * action, "Return")
    kept(tour, f"StartupActionTag={action}")


def restart(tour, *files):
    tour.screen.keys("Escape")
    tour.screen.gone("frame", Names.general)
    tour.quit()
    tour.start(*files)


def leave_panel(tour):
    tour.screen.keys("Escape")
    tour.screen.gone("text", Names.file_name)


@station("damaged-settings")
def damaged_settings_are_kept_aside(tour):
    content = settings(tour).read_text() + "this is no line of settings\n"
    settings(tour).write_text(content)
    tour.start(tour.document)
    tour.screen.sheet(Names.settings_damaged, [Names.ok])
    aside = list(settings(tour).parent.glob("quorvane.ini.damaged-*"))
    must([path.read_text() for path in aside] == [content], f"kept aside: {aside}")
    kept(tour, "autolocBackgroundEnabled=true")


@station("preferences")
def the_preferences_have_four_panels(tour):
    screen = tour.screen
    screen.press(Names.ok)
    screen.gone("label", Names.settings_damaged)
    open_preferences(tour, Names.general)
    top = screen.find("frame", Names.general).place[1]
    for panel in PANELS:
        if panel != Names.general:
            tour.picture()
        screen.press(panel)
        frame = screen.find("frame", panel)
        screen.wait(f"the window of {panel} under the same top",
                    lambda frame=frame: frame.place[1] == top)


@station("preferences-are-kept")
def what_is_chosen_outlives_the_program(tour):
    screen = tour.screen
    screen.press(Names.edit)
    screen.press(Names.show_ruler)
    kept(tour, "StartWithRuler=true")
    screen.fill(screen.find("spin button", Names.new_font_size), SIZE)
    screen.keys("Tab")
    kept(tour, f"StartupFontSize={SIZE}")
    screen.keys("Escape")
    tour.quit()
    tour.start(tour.document)
    open_preferences(tour, Names.edit)
    screen.wait("the ruler chosen", lambda: screen.find("check box", Names.show_ruler).has("checked"))
    screen.wait(f"a size of {SIZE}",
                lambda: screen.find("spin button", Names.new_font_size).text.startswith(SIZE))


@station("startup-document")
def a_document_is_selected_for_startup(tour):
    choose_startup(tour, 3)
    tour.screen.press(Names.select)
    tour.choose_file(tour.document)
    tour.screen.find("label", tour.document.name)


@station("starts-with-the-document")
def a_start_opens_the_selected_document(tour):
    restart(tour)
    tour.screen.find("password text", Names.password)
    tour.screen.find("frame", tour.document.stem)


@station("starts-with-the-panel")
def a_start_asks_which_document(tour):
    choose_startup(tour, 2)
    restart(tour)
    tour.screen.find("text", Names.file_name)


@station("starts-with-the-panel-if-nothing-is-open")
def a_start_asks_when_no_document_came(tour):
    leave_panel(tour)
    choose_startup(tour, 1)
    restart(tour)
    tour.screen.find("text", Names.file_name)


@station("starts-with-a-new-document")
def a_start_makes_a_new_document(tour):
    leave_panel(tour)
    choose_startup(tour, 0)
    restart(tour)
    tour.screen.find("password text", Names.new_password)


@station("update")
def an_update_is_asked_for(tour):
    """A program that was built without the vendor's hosts asks nobody, and says that it failed."""
    screen = tour.screen
    tour.protect(PASSWORD)
    open_preferences(tour, Names.update)
    if not tour.updates:
        screen.press(Names.check_now)
        screen.sheet(Names.update_failed, [Names.ok])
        tour.picture()
        screen.press(Names.ok)
        return
    tour.updates.record = LATEST
    screen.press(Names.check_now)
    screen.sheet(Names.update_available, [Names.download, Names.download_page, Names.later])
    tour.picture()
    screen.press(Names.later)
    screen.gone("label", Names.update_available)
    must(not screen.sees("label", "Last checked: never"), "the check is not remembered")
    tour.updates.record = None


@station("about")
def about_tells_the_release(tour):
    screen = tour.screen
    screen.keys("Escape")
    screen.gone("frame", Names.update)
    screen.choose(Names.quorvane_menu, Names.about_item)
    screen.wait("the window in the middle of the screen", lambda: all(
        abs(start + extent // 2 - middle) < 20 for start, extent, middle in zip(
            screen.find("frame", Names.about_title).place[:2],
            screen.find("frame", Names.about_title).place[2:], (640, 400))))
    must(any(label.name.startswith("Release 2.6.1 ") for label in screen.all("label")),
         f"no release among {[label.name for label in screen.all('label')]}")
    tour.picture()
    screen.keys("Escape")
    screen.gone("frame", Names.about_title)
    screen.keys("ctrl+w")
    screen.press(Names.dont_save)
    screen.find("push button", Names.new_document)
    screen.wait("the start window with the keyboard", lambda: screen.find("frame").has("active"))
    tour.quit()
