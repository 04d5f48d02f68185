#!/usr/bin/env python3
"""The layering check finds an upward include and passes a downward one."""
import pathlib
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import check_include_direction as layout  # noqa: E402


def tree(files):
    root = pathlib.Path(tempfile.mkdtemp())
    for name, text in files.items():
        path = root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
    return root


class IncludeDirection(unittest.TestCase):
    def test_a_record_that_includes_the_refinement_is_found(self):
        src = tree({"records/job.h": '#include "refine/cycle_driver.h"\n',
                    "refine/cycle_driver.h": '#include "records/job.h"\n'})
        found = layout.violations(src)
        self.assertEqual(len(found), 1)
        self.assertIn("records/job.h", found[0])

    def test_a_source_of_the_crystal_that_includes_the_model_is_found(self):
        src = tree({"crystal/slots.cpp": '#include "model/lorentz.h"\n'})
        self.assertEqual(len(layout.violations(src)), 1)

    def test_folders_side_by_side_do_not_include_each_other(self):
        src = tree({"crystal/a.h": '#include "observations/b.h"\n'})
        self.assertEqual(len(layout.violations(src)), 1)

    def test_an_unknown_folder_is_reported(self):
        src = tree({"misc/a.h": "\n"})
        self.assertEqual(len(layout.violations(src)), 1)

    def test_downward_and_own_folder_includes_pass(self):
        src = tree({"run/driver.cpp": '#include "run/driver.h"\n#include "refine/cycle.h"\n',
                    "surface/console.h": '#include "records/channels.h"\n#include <string>\n'})
        self.assertEqual(layout.violations(src), [])


if __name__ == "__main__":
    unittest.main()
