-- Which of these documents are known.
SELECT DISTINCT hash FROM document WHERE hash IN ({hashes}) FORMAT RowBinary
