"""tarn try --watch at a terminal: a template that is saved again, and Ctrl-C."""
import os
import pty
import select
import signal
import time

import pytest
from conftest import BUILD

WAITING = "waiting for mine.json to be saved"


class Watch:
    """Watches mine.json in a folder, at a terminal of its own."""

    def __init__(self, folder, template):
        self.folder = folder
        (folder / "mine.json").write_text(template)
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(folder)
            signal.signal(signal.SIGINT, signal.SIG_DFL)  # whoever started the tests may have it ignored
            os.execv(BUILD / "tarn", ["tarn", "try", "--watch", "mine.json"])

    def shown(self):
        """What comes until it waits for the file."""
        text = ""
        while WAITING not in text:
            assert select.select([self.terminal], [], [], 30)[0], text
            text += os.read(self.terminal, 4096).decode()
        return text

    def interrupt(self, when=None):
        """Types Ctrl-C, when that file is there."""
        while when is not None and not (self.folder / when).exists():
            time.sleep(0.01)
        os.write(self.terminal, b"\x03")

    def ended(self):
        return os.waitstatus_to_exitcode(os.waitpid(self.process, 0)[1])


@pytest.fixture
def watch(tmp_path):
    started = []
    yield lambda template: started.append(Watch(tmp_path, template)) or started[-1]
    os.close(started[0].terminal)


def test_each_way_to_save_is_seen_and_ctrl_c_ends_the_wait(watch, tmp_path):
    one = watch('{"a": "execute echo first"}')
    assert "  first" in one.shown()
    (tmp_path / "mine.json").write_text('{"a": "execute echo second')
    assert "has no closing quote [syntax]" in one.shown()
    (tmp_path / "mine.json").write_text('{"a": "execute echo third"}')
    assert "  third" in one.shown()
    (tmp_path / ".mine.json.new").write_text('{"a": "execute echo fourth"}')
    (tmp_path / ".mine.json.new").rename(tmp_path / "mine.json")
    assert "  fourth" in one.shown()
    one.interrupt()
    assert one.ended() == -signal.SIGINT


def test_ctrl_c_ends_the_command_and_the_second_one_the_run(watch, tmp_path):
    one = watch('{"a": "execute touch begun; sleep 60", "b": "execute echo after"}')
    one.interrupt("begun")
    shown = one.shown()
    assert "ended by an interrupt" in shown and "  after" in shown
    (tmp_path / "mine.json").write_text('{"a": "execute touch a; sleep 60", "b": "execute touch b; sleep 60",'
                                        ' "c": "execute touch c"}')
    one.interrupt("a")
    one.interrupt("b")
    assert (one.ended(), (tmp_path / "c").exists()) == (-signal.SIGINT, False)
