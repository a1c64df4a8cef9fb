"""Prints the processor time that a program uses until it is ended, in microseconds, and how often it
woke up.

Usage: processor_time.py SECONDS SERVER SCENARIO PROGRAM ARGUMENT...

SERVER runs with the SCENARIO meanwhile; it is ready when it has printed its first line. The figures
are what the kernel accounts to the program itself: user and system time, and voluntary switches.
"""
import os
import signal
import subprocess
import sys
import time


def main():
    seconds, server_program, scenario, *command = sys.argv[1:]
    server = subprocess.Popen([server_program, "--scenario", scenario], stdout=subprocess.PIPE, text=True)
    try:
        if server.stdout.readline() != "ready\n":
            sys.exit("the server does not start")
        program = subprocess.Popen(command, stdout=subprocess.DEVNULL)
        time.sleep(float(seconds))
        program.send_signal(signal.SIGTERM)
        _, status, usage = os.wait4(program.pid, 0)
        if not os.WIFSIGNALED(status) or os.WTERMSIG(status) != signal.SIGTERM:
            sys.exit(f"{command} ended before its time")
        print(round((usage.ru_utime + usage.ru_stime) * 1e6), usage.ru_nvcsw)
    finally:
        server.terminate()
        server.wait()


main()
