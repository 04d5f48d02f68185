#!/usr/bin/env python3
"""Reads a CIF written by corvinet with gemmi, independently of corvinet, and prints what it finds.

Usage:  /usr/bin/python3 check_cif.py FILE.cif HM

Output lines:
  cell a b c alpha beta gamma
  symops_match 0|1          the _space_group_symop_operation_xyz loop, as a set of operators,
                            equals the general position gemmi builds from the symbol HM
  site LABEL x y z occupancy u_iso
  aniso LABEL u11 u22 u33 u12 u13 u23   for each site with anisotropic displacements
  refln_count N
  sf_max_relative R         for neutron data: the largest relative difference between the
                            file's _refln_F_squared_calc and |F|^2 that gemmi computes from the
                            structure read back (whole cell, gemmi's own scattering lengths),
                            over reflections with |F|^2 above 1e-3 of the largest
  b ELEMENT b_fm            gemmi's scattering lengths (fm), for the caller to compare

Exit status 77 when gemmi is not installed.
"""
import sys

try:
    import gemmi
except ImportError:
    print('SKIP: gemmi is not installed', file=sys.stderr)
    sys.exit(77)


def main():
    path, hm = sys.argv[1], sys.argv[2]
    doc = gemmi.cif.read_file(path)  # strict reader: a syntax error raises
    block = doc.sole_block()
    small = gemmi.make_small_structure_from_block(block)
    c = small.cell
    print('cell %.6f %.6f %.6f %.6f %.6f %.6f' % (c.a, c.b, c.c, c.alpha, c.beta, c.gamma))

    ops_file = {gemmi.Op(x) for x in block.find_values('_space_group_symop_operation_xyz')}
    sg = gemmi.SpaceGroup(hm)
    ops_symbol = set(sg.operations())
    same = {op.triplet() for op in ops_file} == {op.triplet() for op in ops_symbol}
    print('symops_match %d' % (1 if same else 0))

    for site in small.sites:
        print('site %s %.6f %.6f %.6f %.6f %.6f' % (site.label, site.fract.x, site.fract.y,
                                                    site.fract.z, site.occ, site.u_iso))

    for site in small.sites:
        a = site.aniso
        if a.nonzero():
            print('aniso %s %.6f %.6f %.6f %.6f %.6f %.6f'
                  % (site.label, a.u11, a.u22, a.u33, a.u12, a.u13, a.u23))

    table = block.find(['_refln_index_h', '_refln_index_k', '_refln_index_l',
                        '_refln_F_squared_calc'])
    rows = [(int(r[0]), int(r[1]), int(r[2]), float(r[3])) for r in table]
    print('refln_count %d' % len(rows))
    probe = block.find_value('_diffrn_radiation_probe')
    if probe == 'neutron' and rows:
        small.spacegroup_hm = hm
        small.setup_cell_images()
        # gemmi's sum runs over every operator: occupancies become crystallographic ones
        # (chemical x site multiplicity / order of the general position)
        small.change_occupancies_to_crystallographic()
        calc = gemmi.StructureFactorCalculatorN(small.cell)
        largest = max(f2 for *_, f2 in rows)
        worst = 0.0
        for h, k, l, f2 in rows:
            if f2 < 1e-3 * largest:
                continue
            f = calc.calculate_sf_from_small_structure(small, [h, k, l])
            mine = abs(f) ** 2 / 100.0  # fm^2 to (1e-12 cm)^2
            worst = max(worst, abs(mine - f2) / f2)
        print('sf_max_relative %.3e' % worst)
        for name in sorted({site.element.name for site in small.sites}):
            print('b %s %.4f' % (name, gemmi.Element(name).neutron92.get_coefs()[0]))


if __name__ == '__main__':
    main()
