# 工具.日期时间类: six unchecked integer fields; 到文本 writes the date unpadded.
d = new 工具.日期时间类
expect d.年 >= 2000
expect d.月 >= 1
expect d.月 <= 12
expect d.时 <= 23
d.年 = 2024
d.月 = 3
d.日 = 5
print d.到文本()
d.年 = 5
d.月 = 1
d.日 = 2
print d.到文本()
d.月 = 13
print d.月
print d.到文本()
d.时 = 25
d.分 = -1
d.秒 = 60
print d.时
print d.分
print d.秒
