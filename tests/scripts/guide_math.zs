# Recipe: everyday maths. The methods are static: call them on the class.
print 工具.数学运算.求斜边(3.0, 4.0)
print 工具.数学运算.求次方(2.0, 10.0), 工具.数学运算.求平方根(2.0)
print 工具.数学运算.求极限(2.1), 工具.数学运算.求底数(-2.1)
print 工具.数学运算.求余数(7.0, 3.0)
# Odd ones kept as they are: 整除 is quotient less remainder, 求反对数 is log10.
print 工具.数学运算.整除(7.0, 2.0), 工具.数学运算.整除(1.0, 0.0)
print 工具.数学运算.求反对数(1000.0)
print 工具.数学运算.取绝对值(-5), 工具.数学运算.改符号(-2.0), 工具.数学运算.改符号(2.0)
r = 工具.数学运算.取随机数()
expect r >= 0
