"""install_test.py BUILD COMPILER: what cmake --install gives works wherever it is moved to."""
import gzip
import os
import re
import shlex
import shutil
import subprocess
import sys
import unittest

SOURCE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
BUILD, COMPILER = os.path.abspath(sys.argv[1]), sys.argv[2]
STAGE = os.path.join(BUILD, "stage")
PREFIX = os.path.join(STAGE, "moved here")
CCACHE = shutil.which("ccache") or ""


def run(*command, **options):
    """What the command prints. One that fails fails the test with what it prints."""
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", **options.pop("env", {})}
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                          env=environment, **options)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(command)} gives {done.returncode}:\n{done.stdout}")
    return done.stdout


def library_folder():
    return next(folder for folder, _, files in os.walk(PREFIX) if "libmirel_fitting.so" in files)


def configure_example(name):
    """An example as a project of its own, against the installed package only. Returns its build folder."""
    build = os.path.join(STAGE, name)
    run("cmake", "-G", "Ninja", "-S", os.path.join(SOURCE, "examples", name), "-B", build,
        f"-DCMAKE_PREFIX_PATH={PREFIX}", f"-DCMAKE_CXX_COMPILER={COMPILER}",
        f"-DCMAKE_CXX_COMPILER_LAUNCHER={CCACHE}")
    return build


def build_example(name):
    build = configure_example(name)
    run("cmake", "--build", build)
    return build


def build_by_pkg_config(library, example):
    folder = library_folder()
    program = os.path.join(STAGE, f"by-pkg-config-{example}")

    def flags(kind):
        path = {"PKG_CONFIG_PATH": os.path.join(folder, "pkgconfig")}
        return shlex.split(run("pkg-config", kind, library, env=path))  # it escapes blanks
    # Compiled apart from linking: the compiler cache takes no other command.
    run(*CCACHE.split(), COMPILER, "-fPIC", "-c", os.path.join(SOURCE, "examples", example, "main.cpp"),
        "-o", f"{program}.o", *flags("--cflags"))
    run(COMPILER, f"{program}.o", "-o", program, f"-Wl,-rpath,{folder}", *flags("--libs"))
    return program


class Install(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        shutil.rmtree(STAGE, ignore_errors=True)
        home = os.path.join(STAGE, "installed here")
        with open(os.path.join(SOURCE, "README.md"), encoding="utf-8") as readme:
            commands = re.search("<!-- run by: scripts/tests/install_test.py -->\n```sh\n(.*?)```",
                                 readme.read(), re.DOTALL).group(1)
        run("sh", "-ec", commands.replace("build/release", f"'{BUILD}'"), env={"HOME": home})
        os.rename(os.path.join(home, "surrogate"), PREFIX)

    def test_the_program_finds_its_libraries(self):
        program = os.path.join(PREFIX, "bin", "surrogate")
        self.assertRegex(run(program, "--version"), r"\d+\.\d+\.\d+")
        needed = re.findall(r"lib(?:mirel|surrogate)\S* => (.*) \(", run("ldd", program))
        self.assertGreater(len(needed), 5)
        for path in needed:
            self.assertEqual(os.path.commonpath([PREFIX, os.path.realpath(path)]), PREFIX)

    def test_libraries_of_the_program_stand_apart(self):
        public = os.listdir(library_folder())
        self.assertNotIn("surrogate_", " ".join(public))
        self.assertIn("libmirel_fitting.so.0", public)

    def test_the_manual_page_and_the_completions_are_installed(self):
        for place, text in (("man/man1/surrogate.1.gz", "\\-\\-inputs"),
                            ("bash-completion/completions/surrogate", "--inputs"),
                            ("zsh/site-functions/_surrogate", "--inputs"),
                            ("fish/vendor_completions.d/surrogate.fish", "-l inputs")):
            read = gzip.open if place.endswith(".gz") else open
            with read(os.path.join(PREFIX, "share", place), "rt", encoding="utf-8") as page:
                self.assertIn(text, page.read())

    def test_nothing_names_the_build_or_the_prefix(self):
        for folder, _, files in os.walk(PREFIX):
            for path in (os.path.join(folder, name) for name in files):
                with open(path, "rb") as file:
                    content = file.read()
                for place in (SOURCE, "installed here"):
                    self.assertNotIn(place.encode(), content, path)

    def test_the_fitting_libraries_need_neither_qt_nor_vtk(self):
        program = os.path.join(build_example("fitting"), "fitting_example")
        self.assertIn("between", run(program, cwd=STAGE))
        self.assertNotRegex(run("ldd", program), "(?i)libqt|libvtk|not found")

    def test_a_host_shows_the_model_of_its_own_data(self):
        program = os.path.join(build_example("host"), "host")
        shown = re.split("Response surface|Kriging|One more.*|After undo", run(program, "--demo"))
        tables = [[line.split() for line in table.strip().splitlines()] for table in shown[1:]]
        self.assertEqual([len(table) for table in tables], [7, 7, 7, 7])
        for before, after in zip(tables, tables[1:]):
            self.assertNotEqual(before, after)
        # Kriging interpolates the measurement at 3 degrees.
        self.assertEqual(tables[1][1], ["3", "0.3246"])

    def test_a_host_brings_its_own_fitting_class(self):
        # Only the name of its project differs from the host's: configuring is tested here, compiling with pkg-config.
        configure_example("replace-platform")
        program = build_by_pkg_config("surrogatemodel", "replace-platform")
        self.assertIn("Power 6\n0  0\n5  4.0", run(program))

    def test_pkg_config_finds_the_fitting_libraries(self):
        self.assertIn("between", run(build_by_pkg_config("mirel-fitting", "fitting"), cwd=STAGE))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
