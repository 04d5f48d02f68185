#!/usr/bin/env python3
"""Reads the JSON file of a corvinet run with Python's own parser and prints it as lines.

Usage: python3 read_json.py JOB.json
Lines: exit_status N / reason TEXT / cycles N / converged true|false / parameters N /
       pattern IP RP RWP REXP CHI2 / phase F IP BRAGG_R FRACTION /
       parameter L VALUE SIGMA SHIFT NAME
"""
import json
import sys


def main():
    with open(sys.argv[1]) as f:
        run = json.load(f)  # a malformed file raises here
    print('exit_status %d' % run['exit_status'])
    print('reason %s' % run['reason'])
    print('cycles %d' % run['cycles_run'])
    print('converged %s' % ('true' if run['converged'] else 'false'))
    print('parameters %d' % run['refined_parameters'])
    for p in run['patterns']:
        print('pattern %d %.6g %.6g %.6g %.6g' % (p['number'], p['Rp'], p['Rwp'], p['Rexp'],
                                                   p['chi2']))
    for ph in run['phases']:
        fraction = ph['fraction_percent']
        print('phase %d %d %.6g %s' % (ph['number'], ph['pattern'], ph['bragg_R'],
                                       'null' if fraction is None else '%.6g' % fraction))
    for q in run['parameters']:
        print('parameter %d %.8g %.6g %.6g %s' % (q['number'], q['value'], q['sigma'], q['shift'],
                                                  q['name']))


if __name__ == '__main__':
    main()
