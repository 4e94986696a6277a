"""The project's version, read from the source tree's top-level CMakeLists.txt, where it lives
(project(QZMath VERSION ...)). Pure Python without imports of the package: setup.py runs it too.
"""
import os
import re

__all__ = ["tree_version"]


def tree_version(root):
    """'M.m.p' from root/CMakeLists.txt, or None when root is not a QZMath source tree."""
    try:
        with open(os.path.join(root, "CMakeLists.txt")) as f:
            text = f.read()
    except OSError:
        return None
    m = re.search(r"project\(\s*QZMath\s+VERSION\s+([0-9]+\.[0-9]+\.[0-9]+)", text)
    return m.group(1) if m else None
