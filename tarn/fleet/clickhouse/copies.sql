-- Which files need not be read while another one is there.
SELECT seen, other FROM copy FORMAT RowBinary
