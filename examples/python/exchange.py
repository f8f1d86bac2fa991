#!/usr/bin/env python3
"""Sends one frame to a reader and shows its answer: exchange.py /dev/ttyUSB0"""
import ctypes
import sys

zucom = ctypes.CDLL("libzucom.so.4")
zucom.ZUCOM_OpenPort.argtypes = [ctypes.c_char_p]
zucom.ZUCOM_SetPortPara.argtypes = [ctypes.c_int, ctypes.c_char_p, ctypes.c_char_p]
zucom.ZUCOM_Transmit.argtypes = [ctypes.c_int, ctypes.c_char_p, ctypes.c_size_t]
zucom.ZUCOM_Receive.argtypes = [ctypes.c_int, ctypes.c_char_p, ctypes.c_size_t]


def check(step, result):
    if result < 0:
        text = ctypes.create_string_buffer(58)
        zucom.ZUCOM_GetErrorText(result, text)
        sys.exit(f"{step}: {text.value.decode()} ({result})")
    return result


request = bytes.fromhex("06 FF 52 00 0F 6E")  # length, address, command 52 00, CRC
answer = ctypes.create_string_buffer(255)

port = check("open", zucom.ZUCOM_OpenPort(sys.argv[1].encode() if len(sys.argv) > 1 else b"/dev/ttyUSB0"))
try:
    check("BAUD", zucom.ZUCOM_SetPortPara(port, b"BAUD", b"115200"))
    check("TIMEOUT", zucom.ZUCOM_SetPortPara(port, b"TIMEOUT", b"2000"))
    check("transmit", zucom.ZUCOM_Transmit(port, request, len(request)))
    length = check("receive", zucom.ZUCOM_Receive(port, answer, len(answer)))
    print(answer.raw[:length].hex(" ").upper())
finally:
    zucom.ZUCOM_ClosePort(port)
