"""Vexa: keyframes, paths and skinned animation at a frame.

Arrays are numpy arrays. Computing releases the interpreter's lock. Faults raise RuntimeError (files and
scenes) or ValueError (arguments) with the texts of the library.
"""
from ._vexa import *
from ._vexa import __version__
