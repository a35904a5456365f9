-- department: Add
exclusive
INSERT INTO VK_DEPARTMENT (name, description, max_receivers, num_receivers) VALUES ('O''Brien', '', 9, 0); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- department: Modify
exclusive
UPDATE VK_DEPARTMENT SET name='O''Brien', description='', max_receivers=9 WHERE id=77 SELECT ErrorCode = @@ERROR 
commit
-- department: Delete
exclusive
DELETE FROM VK_DEPARTMENT WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- department: IncrementReceiverCount, with limits
exclusive
UPDATE VK_DEPARTMENT SET num_receivers = num_receivers+1 WHERE id=7 AND num_receivers < max_receivers SELECT ErrorCode = @@ERROR 
commit
-- department: IncrementReceiverCount
exclusive
UPDATE VK_DEPARTMENT SET num_receivers = num_receivers+1 WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- department: DecrementReceiverCount
exclusive
UPDATE VK_DEPARTMENT SET num_receivers = num_receivers-1 WHERE id=7 AND num_receivers > 0 SELECT ErrorCode = @@ERROR 
commit
-- department: DecrementReceiverCount of a row that is not there
exclusive
UPDATE VK_DEPARTMENT SET num_receivers = num_receivers-1 WHERE id=7 AND num_receivers > 0 SELECT ErrorCode = @@ERROR 
SELECT num_receivers, max_receivers FROM VK_DEPARTMENT WHERE id=7
rollback
-- department: Get
shared
SELECT * FROM VK_DEPARTMENT ORDER BY UPPER(name) ASC
commit
-- department: Get, third page of a filter
shared
SELECT COUNT(id) FROM VK_DEPARTMENT WHERE UPPER(VK_DEPARTMENT.name) LIKE UPPER('a\_\[%') ESCAPE '\'
SELECT * FROM (SELECT TOP 30 *, ROW_NUMBER() over ( ORDER BY UPPER(name) ASC) as rnum FROM (SELECT * FROM VK_DEPARTMENT WHERE UPPER(VK_DEPARTMENT.name) LIKE UPPER('a\_\[%') ESCAPE '\') this_table_1 ) this_table_2 WHERE rnum > 20
commit
-- department: GetByID
shared
SELECT * FROM VK_DEPARTMENT WHERE id=7
commit
-- department: GetByName
shared
SELECT * FROM VK_DEPARTMENT WHERE UPPER(name)=UPPER('it''s')
commit
-- department: GetTotalRecordCount
shared
SELECT COUNT(id) FROM VK_DEPARTMENT
commit
-- department: IsUniqueName
shared
SELECT id FROM VK_DEPARTMENT WHERE UPPER(name)=UPPER('it''s') AND id<>7
commit
-- department: GetNamesList
shared
SELECT id, name FROM VK_DEPARTMENT ORDER BY UPPER(name) ASC
commit
-- department: GetIDByName
shared
SELECT id FROM VK_DEPARTMENT WHERE UPPER(name)=UPPER('it''s')
commit
-- department: ConvertRecords
exclusive
SET IDENTITY_INSERT VK_DEPARTMENT ON
INSERT INTO VK_DEPARTMENT (id, name, description, max_receivers, num_receivers) VALUES (77, '', '', 0, 0); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
SET IDENTITY_INSERT VK_DEPARTMENT OFF
commit
-- receiver: Add
exclusive
INSERT INTO VK_RECEIVER (name, description, pin, email, type, ldap, two_way, carrier_id, owner_id, department_id, bk_pin, bk_carrier_id, voice_enable, disable_start_date, disable_end_date, time_zone_hr_diff, time_zone_id, status_code, security_code, first_name, last_name, forward_to_id, email_fail_over, email_cc, keep_alpha_for_num_type, voice_number, forward_to_number, use_alter_carrier, ad_code, acct_name, acct_pwd, can_update_rece, can_update_schd, remedy_flag, advanced_messaging, msg_encrypt_opt, misc_settings, is_secure) VALUES ('it''s', '', '', '', 0, 0, 0, 0, 0, 0, '', 0, 0, 0, 0, 0, 0, 0, '', '', '', 0, 0, 0, 0, '', '', 0, '', '', '', 0, 0, 0, 0, 0, '', 0); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
INSERT INTO VK_RECEIVER_DEPT (owner_id, department_id) VALUES (77, 5); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- receiver: Modify, from available to not
exclusive
SELECT status_code FROM VK_RECEIVER WHERE id=77
UPDATE VK_RECEIVER SET name='it''s', description='', pin='', email='', type=0, ldap=0, two_way=0, carrier_id=0, owner_id=0, department_id=0, bk_pin='', bk_carrier_id=0, voice_enable=0, disable_start_date=0, disable_end_date=0, time_zone_hr_diff=0, time_zone_id=0, status_code=3, security_code='', first_name='', last_name='', forward_to_id=0, email_fail_over=0, email_cc=0, keep_alpha_for_num_type=0, voice_number='', forward_to_number='', use_alter_carrier=0, ad_code='', acct_name='', acct_pwd='', can_update_rece=0, can_update_schd=0, remedy_flag=0, advanced_messaging=0, msg_encrypt_opt=0, misc_settings='', is_secure=0 WHERE id=77 SELECT ErrorCode = @@ERROR 
DELETE FROM VK_RECEIVER_DEPT WHERE owner_id=77 SELECT ErrorCode = @@ERROR 
INSERT INTO VK_RECEIVER_DEPT (owner_id, department_id) VALUES (77, 5); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
INSERT INTO VK_RECV_DISABLE_HISTORY (receiver_id, disable_start_date, disable_end_date, forward_to_id, forward_to_number) VALUES (77, 0, 0, 0, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- receiver: Modify, available again
exclusive
SELECT status_code FROM VK_RECEIVER WHERE id=77
UPDATE VK_RECEIVER SET name='it''s', description='', pin='', email='', type=0, ldap=0, two_way=0, carrier_id=0, owner_id=0, department_id=0, bk_pin='', bk_carrier_id=0, voice_enable=0, disable_start_date=0, disable_end_date=0, time_zone_hr_diff=0, time_zone_id=0, status_code=1, security_code='', first_name='', last_name='', forward_to_id=0, email_fail_over=0, email_cc=0, keep_alpha_for_num_type=0, voice_number='', forward_to_number='', use_alter_carrier=0, ad_code='', acct_name='', acct_pwd='', can_update_rece=0, can_update_schd=0, remedy_flag=0, advanced_messaging=0, msg_encrypt_opt=0, misc_settings='', is_secure=0 WHERE id=77 SELECT ErrorCode = @@ERROR 
DELETE FROM VK_RECEIVER_DEPT WHERE owner_id=77 SELECT ErrorCode = @@ERROR 
INSERT INTO VK_RECEIVER_DEPT (owner_id, department_id) VALUES (77, 5); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
UPDATE VK_RECV_DISABLE_HISTORY SET disable_end_date=(CASE WHEN disable_start_date>NOW THEN disable_start_date ELSE NOW END) WHERE receiver_id=77 AND (disable_end_date=0 OR disable_end_date>NOW) SELECT ErrorCode = @@ERROR 
commit
-- receiver: ModifyDepartment, with history
exclusive
UPDATE VK_RECEIVER SET department_id=0 WHERE id=77 SELECT ErrorCode = @@ERROR 
DELETE FROM VK_RECEIVER_DEPT WHERE owner_id=77 SELECT ErrorCode = @@ERROR 
INSERT INTO VK_RECEIVER_DEPT (owner_id, department_id) VALUES (77, 5); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
SELECT MAX(id) FROM VK_RECV_DISABLE_HISTORY WHERE receiver_id=77
UPDATE VK_RECV_DISABLE_HISTORY SET receiver_id=77, disable_start_date=0, disable_end_date=0, forward_to_id=0, forward_to_number='' WHERE id=8 SELECT ErrorCode = @@ERROR 
INSERT INTO VK_RECV_DISABLE_HISTORY (receiver_id, disable_start_date, disable_end_date, forward_to_id, forward_to_number) VALUES (77, 0, 0, 0, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- receiver: ChangeStatus
exclusive
UPDATE VK_RECEIVER SET disable_start_date=0, disable_end_date=0, status_code=1, forward_to_id=0 WHERE id=77 SELECT ErrorCode = @@ERROR 
commit
-- receiver: Delete
exclusive
DELETE FROM VK_RECEIVER WHERE id=7 SELECT ErrorCode = @@ERROR 
DELETE FROM VK_RECEIVER_DEPT WHERE owner_id=7 SELECT ErrorCode = @@ERROR 
DELETE FROM VK_RECEIVER_SCHD WHERE owner_id=7 AND member_id=0 SELECT ErrorCode = @@ERROR 
DELETE FROM VK_RECV_DISABLE_HISTORY WHERE receiver_id=7 SELECT ErrorCode = @@ERROR 
DELETE FROM VK_RECV_ATTRIBUTE WHERE receiver_id=7 SELECT ErrorCode = @@ERROR 
commit
-- receiver: UpdateMXPServiceName
exclusive
SELECT id, pin FROM VK_RECEIVER WHERE carrier_id IN (SELECT id FROM VK_CARRIER WHERE protocol_id IN (34, 35))
UPDATE VK_RECEIVER SET pin='a@new' WHERE id=7 SELECT ErrorCode = @@ERROR 
SELECT id, bk_pin FROM VK_RECEIVER WHERE bk_carrier_id IN (SELECT id FROM VK_CARRIER WHERE protocol_id IN (34, 35))
commit
-- receiver: UpdateReceiverSecureStatus
exclusive
UPDATE VK_RECEIVER SET is_secure=1 WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- receiver: SaveAdvMessagingData
exclusive
SELECT misc_settings FROM VK_RECEIVER WHERE id=77
UPDATE VK_RECEIVER SET misc_settings='{}' WHERE id=77 SELECT ErrorCode = @@ERROR 
commit
-- receiver: AddGuestDepartment
exclusive
SELECT COUNT(id) FROM VK_RECEIVER WHERE id=7
SELECT COUNT(id) FROM VK_DEPARTMENT WHERE id=5
SELECT COUNT(id) FROM VK_RECEIVER_DEPT WHERE owner_id=7 AND department_id=5
INSERT INTO VK_RECEIVER_DEPT (owner_id, department_id) VALUES (7, 5); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- receiver: DeleteGuestDepartment
exclusive
DELETE FROM VK_RECEIVER_DEPT WHERE owner_id=7 AND department_id=5 SELECT ErrorCode = @@ERROR 
commit
-- receiver: IsDepartmentRecvLimitReached, groups counted
shared
SELECT max_receivers FROM VK_DEPARTMENT WHERE id=5
SELECT COUNT(id) FROM VK_RECEIVER WHERE department_id=5
SELECT TABLE_NAME FROM INFORMATION_SCHEMA.TABLES WHERE UPPER(TABLE_NAME)='VK_RECIPIENT_GROUP'
SELECT COUNT(id) FROM VK_RECIPIENT_GROUP WHERE department_id=5
commit
-- receiver: ConvertRecords
exclusive
SET IDENTITY_INSERT VK_RECEIVER ON
INSERT INTO VK_RECEIVER (id, name, description, pin, email, type, ldap, two_way, carrier_id, owner_id, department_id, bk_pin, bk_carrier_id, voice_enable, disable_start_date, disable_end_date, time_zone_hr_diff, time_zone_id, status_code, security_code, first_name, last_name, forward_to_id, email_fail_over, email_cc, keep_alpha_for_num_type, voice_number, forward_to_number, use_alter_carrier, ad_code, acct_name, acct_pwd, can_update_rece, can_update_schd, remedy_flag, advanced_messaging, msg_encrypt_opt, misc_settings, is_secure) VALUES (77, 'it''s', '', '', '', 0, 0, 0, 0, 0, 0, '', 0, 0, 0, 0, 0, 0, 1, '', '', '', 0, 0, 0, 0, '', '', 0, '', '', '', 0, 0, 0, 0, 0, '{}', 0); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
SET IDENTITY_INSERT VK_RECEIVER OFF
SET IDENTITY_INSERT VK_RECEIVER_DEPT ON
INSERT INTO VK_RECEIVER_DEPT (id, owner_id, department_id) VALUES (77, 0, 5); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
SET IDENTITY_INSERT VK_RECEIVER_DEPT OFF
commit
-- receiver: GetByID
shared
SELECT * FROM VK_RECEIVER WHERE id=7
commit
-- receiver: GetByName
shared
SELECT * FROM VK_RECEIVER WHERE UPPER(name)=UPPER('it''s')
commit
-- receiver: GetByPin
shared
SELECT * FROM VK_RECEIVER WHERE UPPER(pin)=UPPER('it''s')
commit
-- receiver: GetByIDs
shared
SELECT * FROM VK_RECEIVER WHERE id IN (7, 8) ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- receiver: GetIDByName
shared
SELECT id FROM VK_RECEIVER WHERE LOWER(name) = LOWER('it''s')
commit
-- receiver: Get, with all parts
shared
SELECT VK_RECEIVER.* FROM VK_RECEIVER  ORDER BY UPPER(VK_RECEIVER.name) ASC
SELECT * FROM VK_RECEIVER_DEPT ORDER BY id
SELECT * FROM VK_RECEIVER_SCHD WHERE member_id=0 ORDER BY id
commit
-- receiver: GetForSend, of the enabled
shared
SELECT VK_RECEIVER.*, VK_CARRIER.protocol_id AS protocol_id FROM VK_RECEIVER LEFT OUTER JOIN VK_CARRIER ON VK_CARRIER.id=VK_RECEIVER.carrier_id WHERE (VK_RECEIVER.status_code=1 OR VK_RECEIVER.forward_to_id>0 OR NOT (VK_RECEIVER.disable_end_date<=0 OR (VK_RECEIVER.disable_start_date<=NOW AND VK_RECEIVER.disable_end_date>=NOW))) ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- receiver: GetForMemberDetails
shared
SELECT VK_RECEIVER.id, VK_RECEIVER.name, VK_RECEIVER.description, VK_RECEIVER.pin, VK_RECEIVER.email, VK_RECEIVER.type, VK_RECEIVER.two_way, VK_RECEIVER.carrier_id, VK_RECEIVER.department_id, VK_RECEIVER.disable_start_date, VK_RECEIVER.disable_end_date, VK_RECEIVER.status_code, VK_RECEIVER.first_name, VK_RECEIVER.last_name, VK_RECEIVER.forward_to_id, VK_RECEIVER.advanced_messaging, VK_RECEIVER.is_secure, VK_CARRIER.protocol_id AS protocol_id FROM VK_RECEIVER LEFT OUTER JOIN VK_CARRIER ON VK_CARRIER.id=VK_RECEIVER.carrier_id  ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- receiver: GetForScheduler
shared
SELECT VK_RECEIVER.id, VK_RECEIVER.name, (CASE WHEN (VK_RECEIVER.status_code<>1  AND VK_RECEIVER.forward_to_id<=0  AND ( VK_RECEIVER.disable_end_date<=0 OR  (VK_RECEIVER.disable_start_date<=NOW AND VK_RECEIVER.disable_end_date>=NOW))) THEN 1 ELSE 0 END) AS IsReceiverDisabledAtTime from VK_RECEIVER ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- receiver: GetForFavorites
shared
SELECT VK_RECEIVER.id, VK_RECEIVER.name, VK_RECEIVER.type, VK_RECEIVER.department_id FROM VK_RECEIVER  ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- receiver: GetReceiverProperties
shared
SELECT VK_RECEIVER.id, VK_RECEIVER.two_way, VK_CARRIER.protocol_id, VK_RECEIVER.is_secure, VK_RECEIVER.type FROM VK_RECEIVER LEFT OUTER JOIN VK_CARRIER ON VK_CARRIER.id=VK_RECEIVER.carrier_id  ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- receiver: GetDisableHistory
shared
SELECT * FROM VK_RECV_DISABLE_HISTORY WHERE (disable_end_date<=0 OR disable_end_date>=10) AND disable_start_date<=20 AND receiver_id=7 ORDER BY disable_start_date ASC, id ASC
commit
-- receiver: GetCoveredBy
shared
SELECT * FROM VK_RECEIVER WHERE forward_to_id=7 ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- receiver: GetCarrier
shared
SELECT * FROM VK_CARRIER WHERE id=7
commit
-- receiver: IsUniqueName
shared
SELECT id FROM VK_RECEIVER WHERE UPPER(name)=UPPER('it''s') AND id<>7
commit
-- receiver: IsGroupName, without groups
shared
SELECT TABLE_NAME FROM INFORMATION_SCHEMA.TABLES WHERE UPPER(TABLE_NAME)='VK_RECIPIENT_GROUP'
commit
-- receiver: IsFaxReceiverPresent
shared
SELECT COUNT(id) FROM VK_RECEIVER WHERE carrier_id=2147483646
commit
-- receiver: IsTimeZoneBeingUsed
shared
SELECT * FROM VK_RECEIVER WHERE time_zone_id=7
commit
-- receiver: IsDepartmentBeingUsed
shared
SELECT COUNT(id) FROM VK_RECEIVER WHERE department_id=7
commit
shared
SELECT COUNT(id) FROM VK_RECEIVER_DEPT WHERE department_id=7
commit
-- receiver: IsCarrierBeingUsed
shared
SELECT COUNT(id) FROM VK_RECEIVER WHERE carrier_id=7 OR bk_carrier_id=7
commit
-- receiver: Get of views, every filter
shared
SELECT VK_RECEIVER.id, VK_RECEIVER.name, VK_RECEIVER.description, VK_RECEIVER.pin, VK_RECEIVER.email, VK_RECEIVER.first_name, VK_RECEIVER.last_name, VK_RECEIVER.type, VK_RECEIVER.two_way, VK_RECEIVER.carrier_id, VK_CARRIER.name AS carrier_name, (CASE WHEN (VK_RECEIVER.carrier_id=2147483646) THEN 'Fax' WHEN (VK_RECEIVER.carrier_id=2147483647) THEN 'Voice' ELSE '' END) AS special_carrier, VK_CARRIER.protocol_id AS protocol_id, VK_RECEIVER.owner_id, VK_RECEIVER.department_id, VK_DEPARTMENT.name AS department_name, VK_RECEIVER.status_code, VK_RECEIVER.disable_start_date, VK_RECEIVER.disable_end_date, VK_RECEIVER.forward_to_id, COALESCE(Recv2.name, '') AS ForwardToName, VK_RECEIVER.advanced_messaging, VK_RECEIVER.is_secure FROM VK_RECEIVER LEFT OUTER JOIN VK_CARRIER ON VK_CARRIER.id=VK_RECEIVER.carrier_id LEFT OUTER JOIN VK_DEPARTMENT ON VK_DEPARTMENT.id=VK_RECEIVER.department_id LEFT OUTER JOIN VK_RECEIVER Recv2 ON Recv2.id=VK_RECEIVER.forward_to_id WHERE UPPER(VK_RECEIVER.name) LIKE UPPER('a\_\[%%') ESCAPE '\' AND UPPER(Recv2.name) LIKE UPPER('c''%') ESCAPE '\' AND UPPER(VK_RECEIVER.acct_name)=UPPER('ann') AND VK_RECEIVER.acct_pwd='5ebe2294ecd0e0f08eab7690d2a6ee69' AND (UPPER(SUBSTRING(VK_RECEIVER.name, 1, 1)) >= 'A' AND UPPER(SUBSTRING(VK_RECEIVER.name, 1, 1)) <= 'Z') AND VK_RECEIVER.status_code=1 AND VK_RECEIVER.voice_enable=0 AND VK_RECEIVER.advanced_messaging=1 AND VK_RECEIVER.carrier_id=3 AND VK_RECEIVER.carrier_id IN (SELECT id FROM VK_CARRIER WHERE protocol_id=34) AND VK_RECEIVER.owner_id=6 AND VK_RECEIVER.id IN (SELECT VK_RECEIVER.id FROM VK_RECEIVER LEFT OUTER JOIN VK_RECEIVER_DEPT ON VK_RECEIVER.id=VK_RECEIVER_DEPT.owner_id WHERE VK_RECEIVER.department_id IN (5) OR VK_RECEIVER_DEPT.department_id IN (5)) AND VK_RECEIVER.id IN (NULL) AND VK_RECEIVER.id IN (SELECT VK_RECV_ATTRIBUTE.receiver_id FROM VK_RECV_ATTRIBUTE WHERE (VK_RECV_ATTRIBUTE.attribute_id=1 AND UPPER(VK_RECV_ATTRIBUTE.attribute_values)=UPPER('a')) OR (VK_RECV_ATTRIBUTE.attribute_id=2 AND UPPER(VK_RECV_ATTRIBUTE.attribute_values)=UPPER('b''')) GROUP BY VK_RECV_ATTRIBUTE.receiver_id HAVING COUNT(VK_RECV_ATTRIBUTE.receiver_id) = 2) ORDER BY UPPER(VK_RECEIVER.name) ASC
commit
-- schedule: AddSchedule
exclusive
INSERT INTO VK_RECEIVER_SCHD (owner_id, member_id, member_type, name, start_hour, start_minute, end_hour, end_minute, duration, num_days, recur_start_date, recur_end_type, recur_occurances, recur_end_date, scd_type, weekly_week_increment, weekly_days, monthly_recur_type, monthly_at_day_of_month, monthly_month_increment_1, monthly_at_week_of_month, monthly_at_day_of_week, monthly_month_increment_2, archived) VALUES (0, 0, 0, '', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- schedule: ModifySchedule
exclusive
UPDATE VK_RECEIVER_SCHD SET owner_id=0, member_id=0, member_type=0, name='', start_hour=0, start_minute=0, end_hour=0, end_minute=0, duration=0, num_days=0, recur_start_date=0, recur_end_type=0, recur_occurances=0, recur_end_date=0, scd_type=0, weekly_week_increment=0, weekly_days=0, monthly_recur_type=0, monthly_at_day_of_month=0, monthly_month_increment_1=0, monthly_at_week_of_month=0, monthly_at_day_of_week=0, monthly_month_increment_2=0, archived=1 WHERE id=77 SELECT ErrorCode = @@ERROR 
commit
-- schedule: DeleteSchedule
exclusive
DELETE FROM VK_RECEIVER_SCHD WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- schedule: DeleteSchedule of a member
exclusive
DELETE FROM VK_RECEIVER_SCHD WHERE owner_id=7 AND member_id=8 AND member_type=1 SELECT ErrorCode = @@ERROR 
commit
-- schedule: GetSchedule
shared
SELECT * FROM VK_RECEIVER_SCHD WHERE id=7
commit
-- schedule: IsUniqueScheduleName
shared
SELECT id FROM VK_RECEIVER_SCHD WHERE UPPER(name)=UPPER('it''s') AND owner_id=7 AND archived=0 AND id<>8
commit
-- attribute: AddAttribute
exclusive
INSERT INTO VK_ATTRIBUTE (name, attr_order, type, attr_values, misc) VALUES ('it''s', 0, 0, '', ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- attribute: ModifyAttribute
exclusive
UPDATE VK_ATTRIBUTE SET name='it''s', attr_order=0, type=0, attr_values='', misc='' WHERE id=77 SELECT ErrorCode = @@ERROR 
commit
-- attribute: GetAllAttributes
shared
SELECT * FROM VK_ATTRIBUTE ORDER BY attr_order ASC, UPPER(name) ASC
commit
-- attribute: AddReceiverAttribute
exclusive
SELECT id FROM VK_RECV_ATTRIBUTE WHERE receiver_id=0 AND attribute_id=0 AND UPPER(attribute_values)=UPPER('')
SELECT COUNT(id) FROM VK_RECEIVER WHERE id=0
SELECT COUNT(id) FROM VK_ATTRIBUTE WHERE id=0
INSERT INTO VK_RECV_ATTRIBUTE (receiver_id, attribute_id, attribute_values) VALUES (0, 0, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- attribute: DeleteReceiverAttributeByRcvID
exclusive
DELETE FROM VK_RECV_ATTRIBUTE WHERE receiver_id=7 SELECT ErrorCode = @@ERROR 
commit
-- attribute: GetReceiverAttributeByRcvID
shared
SELECT * FROM VK_RECV_ATTRIBUTE WHERE receiver_id=7 ORDER BY receiver_id ASC, id ASC
commit
-- attribute: GetAssociatedRecvCountByAttribute
shared
SELECT COUNT(DISTINCT receiver_id) FROM VK_RECV_ATTRIBUTE WHERE attribute_id=7
commit
-- attribute: DeleteAttributeByID
exclusive
SELECT COUNT(id) FROM VK_RECV_ATTRIBUTE WHERE attribute_id=7
DELETE FROM VK_ATTRIBUTE WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- carrier: Add
exclusive
INSERT INTO VK_CARRIER (name, description, protocol_id, queue_id, split_long_msg, truncate_long_msg, disabled, max_msg_len, max_combined_len, max_retry, expiration, backup_carrier_id_1, backup_carrier_id_2, num_prefix_digits, num_postfix_digits, pin_template, auto_carr_update, carr_update_version, carrier_data, has_num_scheme) VALUES ('', '', 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, '', 0, 0, '', 0); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- carrier: GetByName
shared
SELECT * FROM VK_CARRIER WHERE UPPER(name)=UPPER('it''s')
commit
-- gateway user: PopulateDefaultUsers
shared
SELECT * FROM VK_XMPP_USER WHERE UPPER(user_id) = UPPER('_vk_agent_')
SELECT * FROM VK_XMPP_USER WHERE UPPER(user_id) = UPPER('_vk_emerg_user_')
SELECT * FROM VK_XMPP_USER WHERE UPPER(user_id) = UPPER('_vk_msgr_user_')
commit
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_XMPP_USER WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_XMPP_USER', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT * FROM VK_XMPP_USER WHERE UPPER(user_id) = UPPER('_vk_agent_')
INSERT INTO VK_XMPP_USER (type, user_id, user_password, name, nick_name, resource, ip, creation_time, enabled, vk_user_id, enable_readonly, enable_hidden, enable_roster, enable_multi_login, misc_settings) VALUES (4, '_vk_agent_', '0f3ad8a75863aaf03cc35b42e75db9120f648a25ab600163785978f3347e099e', '_vk_agent_', '', '_vk_agent_', 'ADDRESS', NOW, 1, 0, 1, 1, 0, 0, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_XMPP_USER WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_XMPP_USER', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT * FROM VK_XMPP_USER WHERE UPPER(user_id) = UPPER('_vk_emerg_user_')
INSERT INTO VK_XMPP_USER (type, user_id, user_password, name, nick_name, resource, ip, creation_time, enabled, vk_user_id, enable_readonly, enable_hidden, enable_roster, enable_multi_login, misc_settings) VALUES (4, '_vk_emerg_user_', 'c250d78ec6b06f24da79886a9b491078659634d73ab887df1d2f0a1d92afa313', '_vk_emerg_user_', '', '', '', NOW, 1, 0, 1, 1, 0, 1, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_XMPP_USER WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_XMPP_USER', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT * FROM VK_XMPP_USER WHERE UPPER(user_id) = UPPER('_vk_msgr_user_')
INSERT INTO VK_XMPP_USER (type, user_id, user_password, name, nick_name, resource, ip, creation_time, enabled, vk_user_id, enable_readonly, enable_hidden, enable_roster, enable_multi_login, misc_settings) VALUES (4, '_vk_msgr_user_', 'b0dd09b2733fb9af59f28f36a5591029298cbbe2197129fdcb9844cb2d6d92f9', '_vk_msgr_user_', '', '', 'ADDRESS', NOW, 1, 0, 1, 1, 0, 1, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- gateway user: Add
exclusive
INSERT INTO VK_XMPP_USER (type, user_id, user_password, name, nick_name, resource, ip, creation_time, enabled, vk_user_id, enable_readonly, enable_hidden, enable_roster, enable_multi_login, misc_settings) VALUES (0, 'it''s', '', '', '', '', '', 0, 0, 0, 0, 0, 0, 0, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- gateway user: Add in the caller's transaction
INSERT INTO VK_XMPP_USER (type, user_id, user_password, name, nick_name, resource, ip, creation_time, enabled, vk_user_id, enable_readonly, enable_hidden, enable_roster, enable_multi_login, misc_settings) VALUES (0, 'it''s', '', '', '', '', '', 0, 0, 0, 0, 0, 0, 0, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
-- gateway user: Modify
exclusive
UPDATE VK_XMPP_USER SET type=0, user_id='it''s', user_password='', name='', nick_name='', resource='', ip='', creation_time=0, enabled=0, vk_user_id=0, enable_readonly=0, enable_hidden=0, enable_roster=0, enable_multi_login=0, misc_settings='' WHERE id=77 SELECT ErrorCode = @@ERROR 
commit
-- gateway user: Delete
exclusive
DELETE FROM VK_XMPP_USER WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- gateway user: UpdateStatus
exclusive
UPDATE VK_XMPP_USER set enabled=1 WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- gateway user: Get
shared
SELECT * FROM VK_XMPP_USER ORDER BY lower(name)
commit
-- gateway user: Get of views
shared
SELECT * FROM (SELECT DISTINCT VK_XMPP_USER.id, VK_XMPP_USER.type, VK_XMPP_USER.user_id, VK_XMPP_USER.name, VK_XMPP_USER.enabled, VK_XMPP_USER.vk_user_id, VK_XMPP_USER.enable_readonly, VK_XMPP_USER.enable_hidden, VK_USER.name AS VKUserName FROM VK_XMPP_USER LEFT OUTER JOIN VK_USER ON VK_XMPP_USER.vk_user_id=VK_USER.id ) this_table_1 ORDER BY UPPER(name) ASC
SELECT COUNT(DISTINCT VK_XMPP_USER.id) FROM VK_XMPP_USER LEFT OUTER JOIN VK_USER ON VK_XMPP_USER.vk_user_id=VK_USER.id 
commit
-- gateway user: Get of views, third page of a filter
shared
SELECT * FROM (SELECT TOP 30 *, ROW_NUMBER() over ( ORDER BY UPPER(VKUserName) DESC) as rnum FROM (SELECT DISTINCT VK_XMPP_USER.id, VK_XMPP_USER.type, VK_XMPP_USER.user_id, VK_XMPP_USER.name, VK_XMPP_USER.enabled, VK_XMPP_USER.vk_user_id, VK_XMPP_USER.enable_readonly, VK_XMPP_USER.enable_hidden, VK_USER.name AS VKUserName FROM VK_XMPP_USER LEFT OUTER JOIN VK_USER ON VK_XMPP_USER.vk_user_id=VK_USER.id WHERE UPPER(VK_XMPP_USER.name) LIKE UPPER('a\_\[\%%') ESCAPE '\' AND VK_XMPP_USER.vk_user_id=5 AND VK_XMPP_USER.enable_hidden=0) this_table_1 ) this_table_2 WHERE rnum > 20
SELECT COUNT(DISTINCT VK_XMPP_USER.id) FROM VK_XMPP_USER LEFT OUTER JOIN VK_USER ON VK_XMPP_USER.vk_user_id=VK_USER.id WHERE UPPER(VK_XMPP_USER.name) LIKE UPPER('a\_\[\%%') ESCAPE '\' AND VK_XMPP_USER.vk_user_id=5 AND VK_XMPP_USER.enable_hidden=0
commit
-- gateway user: GetByName
shared
SELECT * FROM VK_XMPP_USER WHERE UPPER(user_id) = UPPER('it''s')
commit
-- gateway user: GetIDByName
shared
SELECT id FROM VK_XMPP_USER WHERE UPPER(name) = UPPER('it''s')
commit
-- gateway user: GetAllNameList
shared
SELECT id,name FROM VK_XMPP_USER ORDER BY lower(name)
commit
-- gateway user: GetTotalRecordCount
shared
SELECT count(*) FROM VK_XMPP_USER Where enable_hidden=0
commit
-- gateway user: IsUniqueName
shared
SELECT id FROM VK_XMPP_USER WHERE lower(user_id) = lower('it''s')
commit
-- client: Add
exclusive
INSERT INTO VK_ACTIVE_MXP_CLIENT (activation_key, is_suspended, created_time, suspended_time, ip_address, platform, client_name, active_mode, is_authorized, activation_user_name) VALUES ('', 0, 0, 0, '', '', 'it''s', 1, 0, ''); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- client: Modify
exclusive
UPDATE VK_ACTIVE_MXP_CLIENT SET activation_key='', is_suspended=0, created_time=0, suspended_time=0, ip_address='', platform='', client_name='it''s', active_mode=1, is_authorized=0, activation_user_name='' WHERE id=77 SELECT ErrorCode = @@ERROR 
commit
-- client: Delete
exclusive
DELETE FROM VK_ACTIVE_MXP_CLIENT WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- client: UpdateAuthorization
exclusive
UPDATE VK_ACTIVE_MXP_CLIENT SET is_authorized=1 WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- client: UpdateActivationMode
exclusive
UPDATE VK_ACTIVE_MXP_CLIENT SET active_mode=2 WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- client: Get
shared
SELECT * FROM VK_ACTIVE_MXP_CLIENT ORDER BY created_time ASC
commit
-- client: GetForView
shared
SELECT * FROM (SELECT VK_ACTIVE_MXP_CLIENT.*, VK_RECEIVER.name AS receiver_name, VK_RECEIVER.first_name AS receiver_first_name, VK_RECEIVER.last_name AS receiver_last_name FROM VK_ACTIVE_MXP_CLIENT LEFT OUTER JOIN VK_RECEIVER ON VK_ACTIVE_MXP_CLIENT.activation_user_name=VK_RECEIVER.name ) this_table_1 ORDER BY created_time ASC
SELECT COUNT(*) FROM VK_ACTIVE_MXP_CLIENT 
commit
-- client: GetForView, third page of a filter
shared
SELECT * FROM (SELECT TOP 30 *, ROW_NUMBER() over ( ORDER BY created_time ASC) as rnum FROM (SELECT VK_ACTIVE_MXP_CLIENT.*, VK_RECEIVER.name AS receiver_name, VK_RECEIVER.first_name AS receiver_first_name, VK_RECEIVER.last_name AS receiver_last_name FROM VK_ACTIVE_MXP_CLIENT LEFT OUTER JOIN VK_RECEIVER ON VK_ACTIVE_MXP_CLIENT.activation_user_name=VK_RECEIVER.name WHERE UPPER(client_name) LIKE UPPER('a\_\[\%%') ESCAPE '\' AND created_time BETWEEN 10 AND 20) this_table_1 ) this_table_2 WHERE rnum > 20
SELECT COUNT(*) FROM VK_ACTIVE_MXP_CLIENT WHERE UPPER(client_name) LIKE UPPER('a\_\[\%%') ESCAPE '\' AND created_time BETWEEN 10 AND 20
commit
-- client: GetByName
shared
SELECT * FROM VK_ACTIVE_MXP_CLIENT WHERE client_name = 'it''s'
commit
-- client: GetByActivationKey
shared
SELECT * FROM VK_ACTIVE_MXP_CLIENT WHERE UPPER(activation_key) = UPPER('it''s')
commit
-- client: GetTotalRecordCount
shared
SELECT COUNT(*) FROM VK_ACTIVE_MXP_CLIENT WHERE active_mode = 1
commit
-- queue: Add
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
DELETE FROM VK_QUEUE_PAGING WHERE msg_name='M.2.J''1.mxp' SELECT ErrorCode = @@ERROR 
INSERT INTO VK_QUEUE_PAGING (msg_name, msg_status, msg_query_count, msg_job_id, msg_protocol, last_modify_time, last_paging_queue_id, create_time, priority, sender_name, receiver_name, rcv_group_name, pin, carrier_name, next_send_time, expiry_time, next_query_time, casc_delay_mins, schd_days_to_send, schd_time_in_mins, schd_last_send_time, schd_date_to_send, msg_contents) VALUES ('M.2.J''1.mxp', 'M', 2, 'J''1', 'mxp', NOW, 0, 0, 3, '', '', '', '', '', 0, 0, 0, 0, 0, 0, 0, 0, 'it''s'); SELECT [id] = @@IDENTITY, ERRORCODE=@@ERROR 
commit
-- queue: Modify
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT id, msg_name FROM VK_QUEUE_PAGING WHERE msg_name='M.0.old.mxp'
DELETE FROM VK_QUEUE_PAGING WHERE msg_name='M.2.J''1.mxp' AND id<>7 SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET msg_name='M.2.J''1.mxp', msg_status='M', msg_query_count=2, msg_job_id='J''1', msg_protocol='mxp', last_modify_time=NOW, last_paging_queue_id=0, create_time=0, priority=3, sender_name='', receiver_name='', rcv_group_name='', pin='', carrier_name='', next_send_time=0, expiry_time=0, next_query_time=0, casc_delay_mins=0, schd_days_to_send=0, schd_time_in_mins=0, schd_last_send_time=0, schd_date_to_send=0, msg_contents='it''s' WHERE id=7 SELECT ErrorCode = @@ERROR 
commit
-- queue: Delete
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
DELETE FROM VK_QUEUE_PAGING WHERE msg_name='M.0.a.mxp' SELECT ErrorCode = @@ERROR 
commit
-- queue: DeleteMsgList
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
DELETE FROM VK_QUEUE_PAGING WHERE id IN (7) SELECT ErrorCode = @@ERROR 
commit
-- queue: UpdateName
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT msg_name FROM VK_QUEUE_PAGING WHERE msg_name='M.0.a.mxp'
DELETE FROM VK_QUEUE_PAGING WHERE msg_name='R.0.a.mxp' SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET msg_name='R.0.a.mxp', msg_status='R', msg_query_count=0, msg_job_id='a', msg_protocol='mxp' WHERE msg_name='M.0.a.mxp' SELECT ErrorCode = @@ERROR 
commit
-- queue: Morph, with a time
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT msg_name FROM VK_QUEUE_PAGING WHERE msg_name='M.0.a.mxp'
DELETE FROM VK_QUEUE_PAGING WHERE msg_name='Q.0.a.mxp' SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET msg_name='Q.0.a.mxp', msg_status='Q', msg_query_count=0, msg_job_id='a', msg_protocol='mxp', last_modify_time=10000 WHERE msg_name='M.0.a.mxp' SELECT ErrorCode = @@ERROR 
commit
-- queue: UpdateTime
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
UPDATE VK_QUEUE_PAGING SET last_modify_time=10000 WHERE msg_name='M.0.a.mxp' SELECT ErrorCode = @@ERROR 
commit
-- queue: UnlockMsgList
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
UPDATE VK_QUEUE_PAGING SET lock_time=0 WHERE id IN (7) SELECT ErrorCode = @@ERROR 
commit
-- queue: UnprocessMsgList
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT msg_name, msg_query_count FROM VK_QUEUE_PAGING WHERE last_lock_owner_svc_name='svc' AND (lock_time<>0 OR msg_status='R')
DELETE FROM VK_QUEUE_PAGING WHERE msg_name='M.0.a.mxp' SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET lock_time=0, last_lock_owner_svc_name='', msg_status='M', msg_name='M'+SUBSTRING(msg_name, 2, LEN(msg_name)-1) WHERE last_lock_owner_svc_name='svc' AND msg_query_count=0 AND (lock_time<>0 OR msg_status='R') SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET lock_time=0, last_lock_owner_svc_name='', msg_status='Q', msg_name='Q'+SUBSTRING(msg_name, 2, LEN(msg_name)-1) WHERE last_lock_owner_svc_name='svc' AND msg_query_count>0 AND (lock_time<>0 OR msg_status='R') SELECT ErrorCode = @@ERROR 
commit
-- queue: UnprocessLockedUpMsgs
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT msg_name, msg_query_count FROM VK_QUEUE_PAGING WHERE last_lock_owner_svc_name IN ('svc', 'o''ther', '') AND msg_status='R' AND last_modify_time<NOW
DELETE FROM VK_QUEUE_PAGING WHERE msg_name='M.0.a.mxp' SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET lock_time=0, last_lock_owner_svc_name='', msg_status='M', msg_name='M'+SUBSTRING(msg_name, 2, LEN(msg_name)-1) WHERE last_lock_owner_svc_name IN ('svc', 'o''ther', '') AND msg_query_count=0 AND msg_status='R' AND last_modify_time<NOW SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET lock_time=0, last_lock_owner_svc_name='', msg_status='Q', msg_name='Q'+SUBSTRING(msg_name, 2, LEN(msg_name)-1) WHERE last_lock_owner_svc_name IN ('svc', 'o''ther', '') AND msg_query_count>0 AND msg_status='R' AND last_modify_time<NOW SELECT ErrorCode = @@ERROR 
UPDATE VK_QUEUE_PAGING SET lock_time=0, last_lock_owner_svc_name='' WHERE last_lock_owner_svc_name IN ('svc', 'o''ther') AND lock_time<>0 AND lock_time<NOW AND msg_status<>'R' SELECT ErrorCode = @@ERROR 
commit
-- queue: CleanupOldMsgs
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
DELETE FROM VK_QUEUE_PAGING WHERE last_modify_time<NOW AND msg_status IN ('M','Q','R') SELECT ErrorCode = @@ERROR 
WITH this_table AS (SELECT ROW_NUMBER() OVER (ORDER BY last_modify_time DESC, create_time DESC) AS rnum FROM VK_QUEUE_PAGING WHERE msg_status IN ('M','Q','R')) DELETE FROM this_table WHERE this_table.rnum > 50 SELECT ErrorCode = @@ERROR 
commit
-- queue: EmptyQueue
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
DELETE FROM VK_QUEUE_PAGING SELECT ErrorCode = @@ERROR 
commit
-- queue: GetReadyMsg
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT id, msg_name, last_modify_time, last_paging_queue_id FROM VK_QUEUE_PAGING WHERE ((lock_time=0 OR last_lock_owner_svc_name='svc') AND (msg_status IN ('M','D','E','F') OR (msg_status='Q' AND next_query_time<=NOW) OR (msg_status='R' AND last_lock_owner_svc_name='svc' AND last_modify_time<NOW) OR (msg_status='W' AND last_modify_time<NOW))) ORDER BY priority ASC, last_modify_time ASC, create_time ASC
UPDATE VK_QUEUE_PAGING SET lock_time=NOW, last_lock_owner_svc_name='svc' WHERE id IN (7) SELECT ErrorCode = @@ERROR 
commit
-- queue: GetReadyMsg, third page
exclusive
DECLARE @held INT; SELECT @held = COUNT(id) FROM VK_QUEUE_PAGING WHERE id=0; EXEC @held = sp_getapplock @Resource='VK_QUEUE_PAGING', @LockMode='Exclusive', @LockOwner='Transaction'; SELECT ErrorCode = CASE WHEN @held < 0 THEN @held ELSE 0 END
SELECT * FROM (SELECT TOP 30 id, msg_name, last_modify_time, last_paging_queue_id, create_time, priority, sender_name, receiver_name, rcv_group_name, pin, carrier_name, next_send_time, expiry_time, next_query_time, casc_delay_mins, schd_days_to_send, schd_time_in_mins, schd_last_send_time, schd_date_to_send, ROW_NUMBER() OVER (ORDER BY priority ASC, last_modify_time ASC, create_time ASC) as rnum FROM VK_QUEUE_PAGING WHERE ((lock_time=0 OR last_lock_owner_svc_name='svc') AND (msg_status IN ('M','D','E','F') OR (msg_status='Q' AND next_query_time<=NOW) OR (msg_status='R' AND last_lock_owner_svc_name='svc' AND last_modify_time<NOW) OR (msg_status='W' AND last_modify_time<NOW)))) this_table WHERE rnum > 20;
UPDATE VK_QUEUE_PAGING SET lock_time=NOW, last_lock_owner_svc_name='svc' WHERE id IN (7) SELECT ErrorCode = @@ERROR 
commit
-- queue: GetByName
shared
SELECT id, msg_name, last_modify_time, last_paging_queue_id FROM VK_QUEUE_PAGING WHERE msg_name='M.0.a.mxp'
SELECT msg_contents FROM VK_QUEUE_PAGING WHERE msg_name='M.0.a.mxp'
commit
-- queue: Get, every filter
shared
SELECT id, msg_name, last_modify_time, last_paging_queue_id FROM VK_QUEUE_PAGING WHERE UPPER(msg_name) LIKE UPPER('a\_\[%%') ESCAPE '\' AND msg_protocol LIKE 'mxp%' ESCAPE '\' AND last_modify_time<=20 AND expiry_time<NOW AND priority=2 AND UPPER(sender_name) LIKE UPPER('s%') ESCAPE '\' AND UPPER(receiver_name) LIKE UPPER('r%') ESCAPE '\' AND UPPER(rcv_group_name) LIKE UPPER('g%') ESCAPE '\' AND UPPER(pin) LIKE UPPER('p%') ESCAPE '\' AND UPPER(carrier_name) LIKE UPPER('c%') ESCAPE '\' AND create_time>=10 ORDER BY casc_delay_mins DESC
commit
-- queue: GetFilteredRecordCount
shared
SELECT COUNT(id) FROM VK_QUEUE_PAGING WHERE UPPER(msg_name) LIKE UPPER('a\_\[%%') ESCAPE '\' AND msg_protocol LIKE 'mxp%' ESCAPE '\' AND last_modify_time<=20 AND expiry_time<NOW AND priority=2 AND UPPER(sender_name) LIKE UPPER('s%') ESCAPE '\' AND UPPER(receiver_name) LIKE UPPER('r%') ESCAPE '\' AND UPPER(rcv_group_name) LIKE UPPER('g%') ESCAPE '\' AND UPPER(pin) LIKE UPPER('p%') ESCAPE '\' AND UPPER(carrier_name) LIKE UPPER('c%') ESCAPE '\' AND create_time>=10
commit
-- queue: GetByNameList
shared
SELECT id, msg_name, last_modify_time, last_paging_queue_id, create_time, priority, sender_name, receiver_name, rcv_group_name, pin, carrier_name, next_send_time, expiry_time, next_query_time, casc_delay_mins, schd_days_to_send, schd_time_in_mins, schd_last_send_time, schd_date_to_send FROM VK_QUEUE_PAGING WHERE UPPER(msg_name) LIKE UPPER('M.0%') ESCAPE '\' ORDER BY casc_delay_mins DESC
commit
-- queue: GetLockedUpMsgsServiceNames
shared
SELECT DISTINCT last_lock_owner_svc_name FROM VK_QUEUE_PAGING WHERE ((lock_time<>0 AND lock_time<NOW) OR (msg_status='R' AND last_modify_time<NOW)) AND last_lock_owner_svc_name<>''
commit
-- queue: GetOldestMsgTime
shared
SELECT * FROM (SELECT TOP 1 create_time, ROW_NUMBER() OVER (ORDER BY create_time ASC) as rnum FROM VK_QUEUE_PAGING) this_table WHERE rnum > 0;
commit
-- queue: GetTotalRecordCount
shared
SELECT COUNT(id) FROM VK_QUEUE_PAGING
commit
-- queue: IsUniqueName
shared
SELECT id FROM VK_QUEUE_PAGING WHERE msg_name='M.0.it''s.mxp'
commit
-- queue: GetReadyMsg of the cascade queue
shared
SELECT id, msg_name, last_modify_time, last_paging_queue_id FROM VK_QUEUE_PAGING WHERE (create_time+(casc_delay_mins*60))<NOW ORDER BY priority ASC, last_modify_time ASC, create_time ASC
commit
-- queue: GetReadyMsg of the schedule queue
shared
SELECT id, msg_name, last_modify_time, last_paging_queue_id FROM VK_QUEUE_PAGING WHERE ((schd_date_to_send=0 AND (((schd_days_to_send & 256)=0) OR (schd_last_send_time=0 OR schd_last_send_time NOT BETWEEN NOW AND NOW)) AND ((schd_days_to_send & 16)>0) AND schd_time_in_mins BETWEEN 571 AND 600) OR (schd_date_to_send<>0 AND (schd_date_to_send + (schd_time_in_mins * 60)) <= NOW)) ORDER BY priority ASC, last_modify_time ASC, create_time ASC
commit
