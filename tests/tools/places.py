"""Where the project's own programs lie."""

import pathlib

TOP = pathlib.Path(__file__).resolve().parents[2]
