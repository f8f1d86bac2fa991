"""Shell completion: what a user gets on pressing the tabulator key."""
import os
import shlex
import shutil
import subprocess
import unittest

from zucomProgram import COMMAND, HANG

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "tools", "completion")
AS_PROGRAM = 'zucom() { %s "$@"; }\n' % shlex.join(os.path.abspath(part) if os.sep in part else part
                                                   for part in COMMAND)
CASES = [  # words of the command line, the last one to be completed; some of what is offered, some of what is not
    (["zucom", "s"], {"sim", "scan"}, {"exchange"}),
    (["zucom", "exchange", "--re"], {"--repeat"}, {"--kind", "--seed"}),
    (["zucom", "exchange", "--kind", ""], {"standard", "advanced", "enhanced"}, {"--kind"}),
    (["zucom", "sim", "-b", "9"], {"9600", "921600"}, {"19200"}),
    (["zucom", "sim", "--link", ""], set(), {"standard", "9600"}),
]


class CompletionTest(unittest.TestCase):
    def test_bash(self):
        for words, offered, not_offered in CASES:
            with self.subTest(words):
                script = (AS_PROGRAM + f"source {shlex.quote(FOLDER)}/zucom.bash\nCOMP_WORDS=({shlex.join(words)})\n"
                          f'COMP_CWORD={len(words) - 1}\n_zucom\nprintf "%s\\n" "${{COMPREPLY[@]}}"')
                result = subprocess.run(["bash", "-euc", script], capture_output=True, text=True, timeout=HANG)
                self.assertEqual((0, ""), (result.returncode, result.stderr))
                got = set(result.stdout.split())
                self.assertLessEqual(offered, got)
                self.assertFalse(not_offered & got)

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh(self):
        stubs = ("_describe() { print -l ${(P)2%%:*} }\n_files() { }\ncompadd() { print -l -- ${(P)2} }\n"
                 "complete_words() { local -a words=(\"$@\"); local CURRENT=$# PREFIX=${@[-1]}; source $FOLDER/_zucom }\n")
        for words, offered, not_offered in CASES:
            with self.subTest(words):
                script = AS_PROGRAM + stubs + "complete_words " + shlex.join(words)
                result = subprocess.run(["zsh", "-fc", script], capture_output=True, text=True, timeout=HANG,
                                        env={**os.environ, "FOLDER": FOLDER})
                self.assertEqual("", result.stderr)
                got = {word for word in result.stdout.split() if word.startswith(words[-1])}
                self.assertLessEqual(offered, got)
                self.assertFalse(not_offered & got)


if __name__ == "__main__":
    unittest.main()
