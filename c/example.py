#!/usr/bin/env python3
"""The example of example.c through Python's foreign function interface.

usage: example.py LIBRARY   (libvexa_c.so)
"""
import ctypes as c
import sys

vexa = c.CDLL(sys.argv[1])
vexa.vexa_error.restype = c.c_char_p
REAL, SQUARE, SINUS, NONE = 2, 1, 3, 0xFFFFFFFF


class Number(c.Union):
    _fields_ = [("vector", c.c_double * 3), ("real", c.c_double), ("integer", c.c_int32)]


class Key(c.Structure):
    _fields_ = [("frame", c.c_int32), ("type", c.c_uint32), ("curve", c.c_int32),
                ("value", Number)]


class Value(c.Structure):
    _fields_ = [("name", c.c_char_p), ("kind", c.c_uint32), ("cyclic", c.c_int32),
                ("repeat_count", c.c_int32), ("path", c.c_uint32), ("instance", c.c_uint32),
                ("rate", c.POINTER(c.c_double)), ("keys", c.POINTER(Key)),
                ("key_count", c.c_size_t)]


class Property(c.Structure):
    _fields_ = [("kind", c.c_uint32), ("cyclic", c.c_int32), ("repeat_count", c.c_int32),
                ("path", c.c_uint32 * 4), ("key_count", c.c_uint32)]


def must(status):
    if status != 0:
        sys.exit("example: " + vexa.vexa_error().decode())


def real_key(frame, real, curve):
    return Key(frame, REAL, curve, Number(real=real))


def play_a_scene():
    scene, player = c.c_void_p(), c.c_void_p()
    keys = (Key * 2)(real_key(0, 0, SINUS), real_key(100, 1, 0))
    value = Value(name=b"brightness", path=NONE, instance=NONE, keys=keys, key_count=2)
    must(vexa.vexa_scene_new(c.byref(scene)))
    must(vexa.vexa_scene_add_value(scene, c.byref(value), None))
    must(vexa.vexa_player_new(scene, c.byref(player)))
    frames, numbers = (c.c_int32 * 5)(0, 25, 50, 75, 100), (c.c_double * 5)()
    must(vexa.vexa_player_sample(player, 0, frames, c.c_size_t(5), numbers, c.c_size_t(5)))
    for frame, number in zip(frames, numbers):
        print(f"brightness {frame:3} {number:.4f}")
    must(vexa.vexa_player_free(player))


COUNT = c.CFUNCTYPE(c.c_int, c.c_void_p, c.POINTER(c.c_uint32))
ITEM = c.CFUNCTYPE(c.c_int, c.c_void_p, c.c_uint32, c.c_void_p)
POINT = c.CFUNCTYPE(c.c_int, c.c_void_p, c.c_uint32, c.c_uint32, c.c_void_p)
PROPERTY = c.CFUNCTYPE(c.c_int, c.c_void_p, c.c_uint64, c.POINTER(Property))
KEY = c.CFUNCTYPE(c.c_int, c.c_void_p, c.c_uint64, c.c_uint32, c.POINTER(Key))


class Functions(c.Structure):
    _fields_ = [("size", c.c_size_t), ("time_scale", COUNT), ("path_count", COUNT),
                ("path", ITEM), ("path_point", POINT), ("instance_count", COUNT),
                ("instance", ITEM), ("property", PROPERTY), ("key", KEY)]


@COUNT
def none(_, out_count):
    out_count[0] = 0
    return 0


@COUNT
def time_scale(_, out_frames):
    out_frames[0] = 25
    return 0


@PROPERTY
def host_property(_, number, out_property):
    out_property[0].kind = 0
    out_property[0].key_count = 2
    return 0 if number == 1 else 1


@KEY
def host_key(user, _, index, out_key):
    height = c.cast(user, c.POINTER(c.c_double))[0]
    out_key[0] = real_key(index * 10, index * height, SQUARE)
    return 0


def ask_a_host():
    height, host, number = c.c_double(8), c.c_void_p(), Number()
    refuse, refuse_point = ITEM(lambda *_: 1), POINT(lambda *_: 1)
    functions = Functions(c.sizeof(Functions), time_scale, none, refuse, refuse_point, none,
                          refuse, host_property, host_key)
    must(vexa.vexa_host_new(c.byref(functions), c.byref(height), c.byref(host)))
    for frame in (0, 5, 10):
        must(vexa.vexa_host_value(host, c.c_uint64(1), frame, None, c.byref(number), None))
        print(f"height {frame} {number.real:.2f}")
    if vexa.vexa_host_value(host, c.c_uint64(2), 0, None, c.byref(number), None) != 0:
        print(vexa.vexa_error().decode())
    must(vexa.vexa_host_free(host))


play_a_scene()
ask_a_host()
