-- All rows of these hosts. Their texts do not travel; of a row that was written again the highest version counts.
SELECT sipHash64(host), sipHash64(place), if(scope = '', 0, sipHash64(scope)), since, if(there, sipHash64(value), 0), void,
  version
FROM history
WHERE host IN ({hosts})
FORMAT RowBinary
