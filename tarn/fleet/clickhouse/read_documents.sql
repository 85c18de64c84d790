-- The documents of these hosts whose facts were taken.
SELECT sipHash64(host), moment, scopes
FROM document
WHERE host IN ({hosts}) AND moment > {after} AND problem = ''
FORMAT RowBinary
