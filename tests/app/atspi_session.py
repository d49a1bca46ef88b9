"""The real cauce desktop on a private X display and accessibility bus, driven as a screen reader drives it.

Used by atspi_desktop_test.py and scripts/screenshots.py. Run() starts the caller again under
`xvfb-run` and `dbus-run-session` when it is not already inside them; Desktop starts the AT-SPI bus and
cauce (QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1, the xcb platform) with a scratch data folder, so the
workbooks it opens are copies of the bundled examples, and removes everything when it ends.
"""
import importlib.util
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

SCREEN = "1366x768x24"  # a laptop screen, 24-bit
BUS_LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
NEEDED = {"xvfb-run": "xvfb", "xauth": "xauth", "dbus-run-session": "dbus-daemon"}  # program: package


def Missing():
    """The Debian packages this machine lacks to run the desktop on the accessibility bus."""
    missing = [package for tool, package in NEEDED.items() if not shutil.which(tool)]
    if not os.access(BUS_LAUNCHER, os.X_OK):
        missing.append("at-spi2-core")
    # Looked up, not imported: importing it reaches for an accessibility bus.
    if importlib.util.find_spec("pyatspi") is None:
        missing.append("python3-pyatspi")
    return missing


def Run():
    """Starts this program again on its own X display and session bus, unless it is already there."""
    if os.environ.get("CAUCE_ATSPI_SESSION"):
        return
    env = dict(os.environ, CAUCE_ATSPI_SESSION="1")
    # xvfb-run -a looks for a free display from the one given: starting each run at its own number keeps
    # two runs begun at the same moment from taking the same display.
    first = str(100 + os.getpid() % 5000)
    command = ["xvfb-run", "-a", "-n", first, "-s", "-screen 0 " + SCREEN, "dbus-run-session", "--",
               sys.executable, *sys.argv]
    sys.exit(subprocess.run(command, env=env).returncode)


def WaitFor(what, timeout=60.0, message="la aplicación no respondió"):
    """Polls what() until it gives something true."""
    end = time.monotonic() + timeout
    while True:
        value = what()
        if value:
            return value
        if time.monotonic() > end:
            raise TimeoutError(message)
        time.sleep(0.05)


class EndedAtStart(RuntimeError):
    pass


class Desktop:
    def __init__(self, cauce):
        self.dir = tempfile.mkdtemp(prefix="cauce-")
        self.env = dict(os.environ, HOME=self.dir, XDG_CONFIG_HOME=self.dir + "/config",
                        XDG_DATA_HOME=self.dir + "/data", XDG_RUNTIME_DIR=self.dir, TMPDIR=self.dir,
                        CAUCE_DATOS=self.dir + "/Datos", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
                        QT_QPA_PLATFORM="xcb", QT_ACCESSIBILITY="1", LC_ALL="C.UTF-8")
        os.chmod(self.dir, 0o700)
        self.processes = []
        try:
            self._Start(cauce)
        except BaseException:
            self.Close()
            raise

    def _Start(self, cauce):
        # Each in a process group of its own, so that its children (the bus daemon, the registry)
        # end with it.
        self.processes.append(subprocess.Popen([BUS_LAUNCHER, "--launch-immediately"], env=self.env,
                                               start_new_session=True, stdout=subprocess.DEVNULL,
                                               stderr=subprocess.DEVNULL))
        WaitFor(_AccessibilityBusUp, message="no arrancó el bus de accesibilidad")
        import pyatspi  # only now: importing it would start another bus
        self.pyatspi = pyatspi
        # A display just started may still refuse the first client: a program that ends at once is
        # started again, twice at the most.
        for attempt in range(3):
            self.cauce = subprocess.Popen([cauce], env=self.env, start_new_session=True)
            self.processes.insert(0, self.cauce)
            try:
                self.app = WaitFor(self._FindApp, message="cauce no apareció en el bus de accesibilidad")
                break
            except EndedAtStart:
                self.processes.remove(self.cauce)
                if attempt == 2:
                    raise
                time.sleep(1)
        # Names and descriptions change while the test looks: read them from the program every time.
        self.app.set_cache_mask(pyatspi.Atspi.Cache.NONE)

    def _FindApp(self):
        if self.cauce.poll() is not None:
            raise EndedAtStart("cauce terminó con el estado %d" % self.cauce.returncode)
        desktop = self.pyatspi.Registry.getDesktop(0)
        desktop.clear_cache()  # the list of applications as it is now
        for app in desktop:
            if app is not None and app.get_process_id() == self.cauce.pid:
                app.clear_cache()
                if app.childCount:
                    return app
        return None

    def Close(self):
        for process in self.processes:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
        shutil.rmtree(self.dir, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.Close()

    # --- finding and driving controls ---------------------------------------------------------

    def Window(self, title_start):
        """The window whose title starts with title_start, once it is showing."""
        def find():
            for w in self.app:
                if w is not None and w.name.startswith(title_start) and \
                        w.getState().contains(self.pyatspi.STATE_SHOWING):
                    return w
            return None
        return WaitFor(find, message="no se abrió la ventana " + title_start)

    def Find(self, root, name, role=None, start=False):
        """The first control under root with this accessible name (or one that starts with it), and
        role (a text box unless told)."""
        role = role or self.pyatspi.ROLE_TEXT

        def match(o):
            if o is None or o.getRole() != role:
                return False
            return o.name.startswith(name) if start else o.name == name
        return WaitFor(lambda: self.pyatspi.findDescendant(root, match), message="no se encontró " + name)

    def Boxes(self, root):
        """Every text box under root by its accessible name."""
        found = self.pyatspi.findAllDescendants(
            root, lambda o: o is not None and o.getRole() == self.pyatspi.ROLE_TEXT)
        return {box.name: box for box in found}

    @staticmethod
    def Text(control):
        return control.queryText().getText(0, -1)

    def Key(self, keysym):
        self.pyatspi.Registry.generateKeyboardEvent(keysym, None, self.pyatspi.KEY_SYM)

    def Click(self, control):
        """A click of the mouse's first button in the middle of the control."""
        x, y, w, h = control.queryComponent().getExtents(self.pyatspi.DESKTOP_COORDS)
        self.pyatspi.Registry.generateMouseEvent(x + w // 2, y + h // 2, "b1c")

    def Type(self, box, text, shows=None):
        """Clicks in the box and replaces what it holds by typing, with real key and mouse events; the
        box then shows `shows` (what was typed, unless told otherwise)."""
        self.Click(box)
        WaitFor(lambda: box.getState().contains(self.pyatspi.STATE_FOCUSED))
        self.Key(0xFF57)  # End
        for _ in self.Text(box):
            self.Key(0xFF08)  # BackSpace
        WaitFor(lambda: self.Text(box) == "")
        self.pyatspi.Registry.generateKeyboardEvent(0, text, self.pyatspi.KEY_STRING)
        shows = text if shows is None else shows
        WaitFor(lambda: self.Text(box) == shows, message="la casilla no muestra " + shows)


def _AccessibilityBusUp():
    from gi.repository import Gio, GLib
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)
    reply = bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                          "NameHasOwner", GLib.Variant("(s)", ("org.a11y.Bus",)), None, 0, -1, None)
    return reply.unpack()[0]
