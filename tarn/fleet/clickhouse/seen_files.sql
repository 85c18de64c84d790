-- Which files have been read.
SELECT seen FROM document FORMAT RowBinary
